// Sizes, texts and files at and beyond what a font can be asked.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "platform/font_faces.h"
#include "platform/posix/realized_font.h"
#include "platform/stock_font.h"
#include "support/font_files.h"
#include "support/font_probe.h"

namespace kerno {
namespace {

using test::FontProbe;
using test::Names;
using ::testing::ElementsAre;

constexpr char32_t kSample[] = {U'A', U'%', U' ', U'永', U'ー', 0, 0xD800, 0x20BB7, 0x10FFFF};

TEST(FontLimits, CharactersAndTheirGlyphs) {
  const FontProbe sans(u"DejaVu Sans", 100);
  const auto box = sans.Points(0x10FFFF);
  EXPECT_FALSE(box.empty());
  for (const char32_t ch : {char32_t{0xD800}, char32_t{0xDFFF}, U'永', char32_t{0x110000},
                            char32_t{0xFFFFFFFF}, char32_t{1}}) {
    EXPECT_EQ(sans.Points(ch), box) << uint32_t{ch};
  }
  EXPECT_TRUE(sans.font()->HasGlyph(U'A'));
  EXPECT_TRUE(sans.font()->HasGlyph(0x1D538));  // 𝔸, outside the first plane

  const auto advance = [&](char32_t ch) { return sans.Glyph(ch).metrics.gmCellIncX; };
  const char16_t lone[] = {0xD835, u'A'};
  EXPECT_EQ(sans.TextExtent(u"𝔸A").cx, advance(0x1D538) + advance(U'A'));
  EXPECT_EQ(sans.TextExtent({lone, 2}).cx, advance(0xD835) + advance(U'A'));
  EXPECT_EQ(sans.TextExtent({lone, 1}).cx, advance(0xD835));
  EXPECT_EQ(sans.TextExtent(u"").cx, 0);
  EXPECT_EQ(sans.TextExtent(u"").cy, 100);
  const FontProbe huge(u"DejaVu Sans", 32767);
  EXPECT_EQ(huge.TextExtent(std::u16string(100000, u'W')).cx, INT32_MAX);
}

TEST(FontLimits, LongNamesAreComparedByTheirFirstUnits) {
  const auto bytes = test::ReadFontFile(test::InstalledFontPath(u"IPAGothic"));
  const std::u16string exact = u"Kana and Ideographs of 31 units";
  ASSERT_EQ(exact.size(), kMaxFaceName);
  test::OnlyTheseFonts fonts;
  fonts.Install("long.ttf", test::WithFamilyName(bytes, exact + u" and a tail"));
  const std::u16string vertical = u"@" + exact.substr(0, 30);
  EXPECT_TRUE(IsFaceInstalled(exact));
  EXPECT_TRUE(IsFaceInstalled(exact + u", another tail"));
  EXPECT_TRUE(IsFaceInstalled(u"@" + exact + u" and a tail"));
  EXPECT_FALSE(IsFaceInstalled(exact.substr(0, 30)));
  EXPECT_THAT(Names(EnumerateFaces()), ElementsAre(exact, vertical));
  EXPECT_EQ(FontProbe(vertical + u"Z", 20).name(), vertical);
  EXPECT_EQ(FontProbe(std::u16string(300, u'x'), 20).name(), exact);
}

TEST(FontLimits, EveryFaceOfACollection) {
  const auto sans = test::ReadFontFile(test::InstalledFontPath(u"DejaVu Sans Mono"));
  const auto gothic = test::ReadFontFile(test::InstalledFontPath(u"IPAGothic"));
  const auto sans_points = FontProbe(u"DejaVu Sans Mono", 50).Points(U'g');
  const auto gothic_points = FontProbe(u"@IPAGothic", 50).Points(U'永');
  test::OnlyTheseFonts fonts;
  fonts.Install("two.ttc", test::Collection({sans, gothic}));
  EXPECT_THAT(Names(EnumerateFaces()),
              ElementsAre(u"DejaVu Sans Mono", u"IPAGothic", u"@IPAGothic"));
  EXPECT_EQ(FontProbe(u"DejaVu Sans Mono", 50).Points(U'g'), sans_points);
  EXPECT_EQ(FontProbe(u"@IPAゴシック", 50).Points(U'永'), gothic_points);
}

TEST(FontLimits, DamagedFilesArePassedOverAndNamed) {
  const auto good = test::ReadFontFile(test::InstalledFontPath(u"DejaVu Sans Mono"));
  const auto expected = FontProbe(u"DejaVu Sans Mono", 40).Points(U'g');
  test::OnlyTheseFonts fonts;
  fonts.Install("aa-truncated.ttf", good.substr(0, good.size() - 100000));
  fonts.Install("noise.ttc", "ttcf\0\1\0\0\xFF\xFF\xFF\xFF this is no font");
  fonts.Install("notes.txt", "no font, and not taken for one");
  const auto other = test::WithFamilyName(good, u"Only Broken");
  fonts.Install("only.ttf", other.substr(0, other.size() / 3));
  fonts.Install("whole.ttf", good);
  std::vector<std::u16string> skipped;
  const auto faces = EnumerateFaces(&skipped);
  ASSERT_EQ(faces.size(), 1U);
  EXPECT_EQ(faces[0].name, u"DejaVu Sans Mono");
  std::string names;
  for (const auto& path : skipped) names += std::filesystem::path(path).stem().string() + " ";
  EXPECT_EQ(names, "aa-truncated noise only ");
  EXPECT_EQ(FontProbe(u"DejaVu Sans Mono", 40).Points(U'g'), expected);
  EXPECT_FALSE(IsFaceInstalled(u"Only Broken"));
  EXPECT_EQ(FontProbe(u"Only Broken", 40).name(), u"DejaVu Sans Mono");
  // A file that is taken away after it was listed leaves the next best.
  const std::string gone = fonts.Install("a.ttf", test::WithFamilyName(good, u"Gone"));
  ASSERT_EQ(FontCatalog::Current().FindFamily(u"Gone", FaceWish{}).size(), 1U);
  std::filesystem::remove(gone);
  EXPECT_EQ(FontProbe(u"Gone", 40).name(), u"DejaVu Sans Mono");
}

// Tables that say what cannot be: whatever the rasteriser lets through must not break the sums.
TEST(FontLimits, AbsurdTables) {
  const auto good = test::ReadFontFile(test::InstalledFontPath(u"DejaVu Sans Mono"));
  const size_t head = test::TableOffset(good, "head");
  const size_t hhea = test::TableOffset(good, "hhea");
  const size_t os2 = test::TableOffset(good, "OS/2");
  struct Change {
    size_t at;
    int size;
    uint32_t value;
  };
  const std::vector<std::vector<Change>> cases = {
      {{head + 18, 2, 0}},  // units per em
      {{head + 18, 2, 0xFFFF}},
      {{os2 + 74, 4, 0}, {hhea + 4, 4, 0}},  // and those of hhea
      {{os2 + 74, 4, 0}, {hhea + 4, 4, 0x80007FFF}, {hhea + 8, 2, 0x8000}},
      {{os2 + 74, 4, 0xFFFFFFFF}},
      {{os2 + 2, 2, 0}},  // average width
      {{os2 + 2, 2, 0x8000}},
      {{head + 36, 4, 0x7FFF7FFF}, {head + 40, 4, 0x80008000}},  // box of all glyphs
      {{hhea + 34, 2, 0}},                                       // number of advances
      {{os2 + 4, 2, 0xFFFF}},                                    // weight class
  };
  test::OnlyTheseFonts fonts;
  for (size_t i = 0; i < cases.size(); ++i) {
    test::FontBytes bytes = good;
    for (const Change& change : cases[i]) {
      test::PutBig(&bytes, change.at, change.size, change.value);
    }
    fonts.Install("absurd.ttf", bytes);
    for (const int32_t height : {-32768, -20, 0, 1, 30, 32767}) {
      const FontProbe font(u"DejaVu Sans Mono", height, 0, 700);
      if (font.font() == nullptr) continue;
      EXPECT_GE(font.metrics().tmHeight, 0) << "case " << i << " height " << height;
      for (const char32_t ch : kSample) font.Glyph(ch);
    }
  }
}

TEST(FontLimits, RandomDamage) {
  std::mt19937 random(11);
  test::TemporaryFolder folder;
  for (const char16_t* name : {u"DejaVu Sans Mono", u"Tlwg Mono", u"IPAGothic"}) {
    const auto good = test::ReadFontFile(test::InstalledFontPath(name));
    const size_t tables = std::min<size_t>(good.size(), 4000);
    for (int round = 0; round < 60; ++round) {
      test::FontBytes bytes = good;
      for (int i = 0; i < 1 + round; ++i) {
        const size_t range = i % 2 == 0 ? good.size() : tables;
        bytes[random() % range] = static_cast<char>(random());
      }
      test::WriteBytes(folder / "damaged", bytes);
      Status reading;
      FontChoice choice;
      choice.path = folder / "damaged";
      choice.embolden = round % 3 == 0;
      choice.vertical = round % 2 == 0;
      const auto font = RealizedFont::Create(choice, round % 5 == 0 ? 32767 : 50, 0, &reading);
      for (const char32_t ch : kSample) {
        if (font) font->Glyph(ch);
      }
    }
  }
}

}  // namespace
}  // namespace kerno
