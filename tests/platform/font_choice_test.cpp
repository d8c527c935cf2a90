#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/font_faces.h"
#include "support/font_probe.h"

namespace kerno {
namespace {

using test::FontProbe;
using test::Names;

TEST(FontChoice, FamiliesGoByAnyLocalizedNameInAnyCase) {
  using Case = std::pair<std::u16string, std::u16string>;
  for (const auto& [wanted, used] : {
           Case{u"dEJAvU sANS mONO", u"DejaVu Sans Mono"},
           {u"DejaVu Sans Condensed", u"DejaVu Sans Condensed"},
           {u"DEJAVU SERIF CONDENSED", u"DejaVu Serif Condensed"},
           {u"dejavu sans light", u"DejaVu Sans Light"},
           {u"IPA明朝", u"IPAMincho"},
           {u"ipa Pゴシック", u"IPAPGothic"},
           {u"@ipa Pゴシック", u"@IPAPGothic"},
       }) {
    EXPECT_TRUE(IsFaceInstalled(wanted));
    const FontProbe font(wanted, 20);
    EXPECT_EQ(font.Points(U'g'), FontProbe(used, 20).Points(U'g')) << std::filesystem::path(wanted);
    EXPECT_NE(font.Points(U'g'), FontProbe(u"DejaVu Serif", 20).Points(U'g'))
        << std::filesystem::path(wanted);
  }
  for (const char16_t* missing :
       {u"", u" DejaVu Sans", u"DejaVu", u"sans-serif", u"DejaVu Sans\n"}) {
    EXPECT_FALSE(IsFaceInstalled(missing));
    EXPECT_NE(FontProbe(missing, 20).font(), nullptr);
  }
}

// Widths of the letter M tell which file was taken.
TEST(FontChoice, BoldBeginsAbove550) {
  const auto width = [](std::u16string_view face, int32_t weight) {
    return FontProbe(face, -1000, 0, weight).Glyph(U'M').metrics.gmCellIncX;
  };
  EXPECT_NE(width(u"DejaVu Sans", 700), width(u"DejaVu Sans", 400));
  EXPECT_NE(width(u"DejaVu Sans Condensed", 700), width(u"DejaVu Sans", 700));
  for (const int32_t weight : {-5, 0, 200, 400, 550, 551, 700, 900, 1000}) {
    const int32_t used = weight > 550 ? 700 : 400;
    EXPECT_EQ(width(u"DejaVu Sans", weight), width(u"DejaVu Sans", used)) << weight;
    EXPECT_EQ(FontProbe(u"DejaVu Sans", 20, 0, weight).metrics().tmWeight, used) << weight;
  }
  // The lightest face of the whole family is in a family of its own.
  EXPECT_NE(FontProbe(u"DejaVu Sans Light", 200).Points(U'M'),
            FontProbe(u"DejaVu Sans", 200, 0, 200).Points(U'M'));
}

// Coordinates have 16 bits before the point, and so has an advance.
TEST(FontChoice, SizesPastTheNumbersOfOutlinesGiveNone) {
  const struct {
    const char16_t* face;
    int32_t height, width;
    char16_t letter;
    bool outlined;
  } cases[] = {
      {u"IPAPGothic", 32767, 0, u'K', true},       {u"DejaVu Serif", -32768, 0, u'i', true},
      {u"IPAPGothic", 65535, 0, u'K', false},      {u"IPAPGothic", 100000, 0, u'K', false},
      {u"@IPAPGothic", 65535, 0, u'K', false},     {u"IPAPGothic", -1000000, 0, u'K', false},
      {u"DejaVu Sans", INT32_MAX, 0, u'i', false}, {u"DejaVu Sans", 32767, 32767, u'W', false},
      {u"IPAGothic", 40000, 0, u'。', false}};
  for (const auto& c : cases) {
    const FontProbe font(c.face, c.height, c.width);
    EXPECT_EQ(font.Glyph(c.letter).ok(), c.outlined)
        << std::filesystem::path(c.face) << " " << c.height << " " << c.width;
  }
}

TEST(FontChoice, EnumerationDescribesFamilies) {
  const std::vector<InstalledFace> faces = EnumerateFaces();
  const auto names = Names(faces);
  struct Case {
    std::u16string name;
    std::u16string local;  // as a Japanese system lists it
    uint8_t pitch_and_family;
    uint8_t char_set;
  };
  for (const auto& [name, local, pitch_and_family, char_set] : {
           Case{u"DejaVu Sans", u"", 0x22, 0},
           {u"DejaVu Sans Mono", u"", 0x31, 0},
           {u"DejaVu Serif Condensed", u"", 0x12, 0},
           {u"IPAGothic", u"IPAゴシック", 0x31, 128},
           {u"@IPAGothic", u"@IPAゴシック", 0x31, 128},
           {u"IPAPMincho", u"IPA P明朝", 0x12, 128},
       }) {
    const std::u16string& shown = std::count(names.begin(), names.end(), name) != 0 ? name : local;
    ASSERT_EQ(std::count(names.begin(), names.end(), shown), 1) << std::filesystem::path(name);
    const InstalledFace& face =
        faces[static_cast<size_t>(std::find(names.begin(), names.end(), shown) - names.begin())];
    EXPECT_EQ(face.pitch_and_family, pitch_and_family) << std::filesystem::path(name);
    EXPECT_EQ(face.char_set, char_set) << std::filesystem::path(name);
    EXPECT_EQ(face.font_type, kTrueTypeFontType) << std::filesystem::path(name);
  }
  EXPECT_EQ(std::count(names.begin(), names.end(), u"@DejaVu Sans"), 0);
  for (const auto& name : names) {
    EXPECT_TRUE(IsFaceInstalled(name));
    EXPECT_EQ(FontProbe(name, 20).name(), name);
  }
}

}  // namespace
}  // namespace kerno
