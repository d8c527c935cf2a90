#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/font_faces.h"
#include "support/font_probe.h"

namespace kerno {
namespace {

using test::FontProbe;

std::vector<std::u16string> Names(const std::vector<InstalledFace>& faces) {
  std::vector<std::u16string> names;
  names.reserve(faces.size());
  for (const InstalledFace& face : faces) names.push_back(face.name);
  return names;
}

TEST(FontChoice, FamiliesGoByAnyLocalizedNameInAnyCase) {
  struct Case {
    std::u16string wanted;
    std::u16string used;
  };
  for (const auto& [wanted, used] : {
           Case{u"DejaVu Sans", u"DejaVu Sans"},
           Case{u"dEJAvU sANS mONO", u"DejaVu Sans Mono"},
           {u"DejaVu Sans Condensed", u"DejaVu Sans Condensed"},
           {u"DEJAVU SERIF CONDENSED", u"DejaVu Serif Condensed"},
           {u"dejavu sans light", u"DejaVu Sans Light"},
           {u"IPA明朝", u"IPAMincho"},
           {u"ipa Pゴシック", u"IPAPGothic"},
           {u"@ipa Pゴシック", u"@IPAPGothic"},
       }) {
    EXPECT_TRUE(IsFaceInstalled(wanted));
    EXPECT_EQ(FontProbe(wanted, 20).name(), used);
  }
  for (const char16_t* missing :
       {u"", u" DejaVu Sans", u"DejaVu", u"sans-serif", u"DejaVu Sans\n"}) {
    EXPECT_FALSE(IsFaceInstalled(missing));
    EXPECT_NE(FontProbe(missing, 20).font(), nullptr);
  }
}

// Widths of the letter M tell which file was taken.
TEST(FontChoice, WeightPicksTheNearestMember) {
  const auto width = [](std::u16string_view face, int32_t weight) {
    return FontProbe(face, -1000, 0, weight).Glyph(U'M').metrics.gmCellIncX;
  };
  EXPECT_EQ(width(u"DejaVu Sans", 0), width(u"DejaVu Sans", 400));
  EXPECT_EQ(width(u"DejaVu Sans", 549), width(u"DejaVu Sans", 400));
  EXPECT_EQ(width(u"DejaVu Sans", 1000), width(u"DejaVu Sans", 700));
  EXPECT_NE(width(u"DejaVu Sans", 700), width(u"DejaVu Sans", 400));
  EXPECT_NE(width(u"DejaVu Sans Condensed", 700), width(u"DejaVu Sans", 700));
  for (const auto& [weight, expected] :
       {std::pair{-5, 200}, {200, 200}, {400, 400}, {500, 400}, {700, 700}, {900, 700}}) {
    EXPECT_EQ(FontProbe(u"DejaVu Sans", 20, 0, weight).metrics().tmWeight, expected) << weight;
  }
}

TEST(FontChoice, MissingBoldIsEmboldened) {
  for (const char16_t* name : {u"IPAMincho", u"@IPAGothic", u"DejaVu Math TeX Gyre"}) {
    const FontProbe plain(name, -200);
    const FontProbe bold(name, -200, 0, 700);
    EXPECT_EQ(bold.name(), std::u16string(name));
    TextMetrics expected = plain.metrics();
    expected.tmWeight = 700;
    EXPECT_EQ(bold.metrics().tmWeight, 700);
    EXPECT_EQ(bold.metrics().tmHeight, expected.tmHeight);
    EXPECT_EQ(bold.metrics().tmAveCharWidth, expected.tmAveCharWidth);
    const GlyphMetrics thin = plain.Glyph(U'A').metrics;
    const GlyphMetrics thick = bold.Glyph(U'A').metrics;
    EXPECT_EQ(thick.gmCellIncX, thin.gmCellIncX);
    EXPECT_GT(thick.gmBlackBoxX, thin.gmBlackBoxX + 2);
    EXPECT_LT(thick.gmptGlyphOriginX, thin.gmptGlyphOriginX);
    EXPECT_EQ(bold.Glyph(U' ').size, 0U);
  }
  EXPECT_EQ(FontProbe(u"IPAMincho", 200, 0, 500).Points(U'A'),
            FontProbe(u"IPAMincho", 200).Points(U'A'));
}

TEST(FontChoice, EnumerationDescribesFamilies) {
  const std::vector<InstalledFace> faces = EnumerateFaces();
  const auto names = Names(faces);
  struct Case {
    const char16_t* name;
    uint8_t pitch_and_family;
    uint8_t char_set;
  };
  for (const auto& [name, pitch_and_family, char_set] : {
           Case{u"DejaVu Sans", 0x22, 0},
           {u"DejaVu Sans Mono", 0x31, 0},
           {u"DejaVu Serif Condensed", 0x12, 0},
           {u"IPAGothic", 0x31, 128},
           {u"@IPAGothic", 0x31, 128},
           {u"IPAPMincho", 0x12, 128},
           {u"Tlwg Mono", 0x31, 0},  // CFF
       }) {
    ASSERT_EQ(std::count(names.begin(), names.end(), name), 1) << std::filesystem::path(name);
    const InstalledFace& face =
        faces[static_cast<size_t>(std::find(names.begin(), names.end(), name) - names.begin())];
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
