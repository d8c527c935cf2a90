#include "platform/posix/vertical_forms.h"

#include <gtest/gtest.h>

#include "platform/font_faces.h"
#include "platform/vertical_orientation.h"
#include "support/font_files.h"
#include "support/font_probe.h"

namespace kerno {
namespace {

using test::FontProbe;

// Without vertical alternates in the font, a bar still runs along the column: a column's glyphs are
// stored a quarter turn before they stand in it.
TEST(VerticalForms, FaceWithoutAlternatesTurnsWhatStandsUpright) {
  auto bytes = test::ReadFontFile(test::InstalledFontPath(u"IPAGothic"));
  bytes.replace(test::TableEntry(bytes, "GSUB"), 4, "GSUX");
  test::OnlyTheseFonts fonts;
  fonts.Install("plain.ttf", test::WithFamilyName(bytes, u"No Alternates"));
  const FontProbe font(u"@No Alternates", 100);
  ASSERT_EQ(font.name(), u"@No Alternates");
  const GlyphMetrics bar = font.Glyph(U'ー').metrics;
  EXPECT_GT(bar.gmBlackBoxX, 3 * bar.gmBlackBoxY);
  const GlyphMetrics comma = font.Glyph(U'、').metrics;
  const GlyphMetrics common = FontProbe(u"No Alternates", 100).Glyph(U'、').metrics;
  EXPECT_NEAR(comma.gmBlackBoxX, common.gmBlackBoxY, 1);
  EXPECT_NEAR(comma.gmBlackBoxY, common.gmBlackBoxX, 1);
  EXPECT_LT(common.gmptGlyphOriginX, 50);
  EXPECT_GT(comma.gmptGlyphOriginX, 50) << "the lower left corner lies at the lower right";
}

TEST(VerticalForms, OnlyFacesWithFullWidthCharactersHaveAVerticalForm) {
  EXPECT_FALSE(IsFaceInstalled(u"@"));
  EXPECT_TRUE(FontProbe(u"@DejaVu Sans", 20).name().starts_with(u"@"));  // the mapper's choice
  for (const char32_t ch : {0u, 0x110000u, 0xFFFFFFFFu}) {
    EXPECT_EQ(VerticalOrientationOf(ch), VerticalOrientation::kRotated);
  }
}

}  // namespace
}  // namespace kerno
