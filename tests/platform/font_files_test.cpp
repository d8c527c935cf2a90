// Faces out of font files that are made for the test.
#include "support/font_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/font_faces.h"
#include "platform/stock_font.h"
#include "support/font_probe.h"

namespace kerno {
namespace {

using test::FontProbe;
using test::Names;

TEST(FontFiles, LongNamesAreComparedByTheirFirstUnits) {
  const auto bytes = test::ReadFontFile(test::InstalledFontPath(u"IPAGothic"));
  const std::u16string exact = u"Kana and Ideographs of 31 units";
  ASSERT_EQ(exact.size(), kMaxFaceName);
  test::OnlyTheseFonts fonts;
  fonts.Install("long.ttf", test::WithFamilyName(bytes, exact + u" and a tail"));
  const std::u16string vertical = u"@" + exact.substr(0, 30);
  EXPECT_TRUE(IsFaceInstalled(exact));
  EXPECT_TRUE(IsFaceInstalled(exact + u", another tail"));
  EXPECT_TRUE(IsFaceInstalled(vertical));
  EXPECT_TRUE(IsFaceInstalled(u"@" + exact + u" and a tail"));
  EXPECT_FALSE(IsFaceInstalled(exact.substr(0, 30)));
  EXPECT_FALSE(IsFaceInstalled(vertical.substr(0, 30)));
  EXPECT_THAT(Names(EnumerateFaces()), ::testing::ElementsAre(exact, vertical));
  EXPECT_EQ(FontProbe(vertical + u"Z", 20).name(), vertical);
  EXPECT_EQ(FontProbe(std::u16string(300, u'x'), 20).name(), exact);
}

TEST(FontFiles, EveryFaceOfACollection) {
  const auto sans = test::ReadFontFile(test::InstalledFontPath(u"DejaVu Sans Mono"));
  const auto gothic = test::ReadFontFile(test::InstalledFontPath(u"IPAGothic"));
  const auto sans_points = FontProbe(u"DejaVu Sans Mono", 50).Points(U'g');
  const auto gothic_points = FontProbe(u"@IPAGothic", 50).Points(U'永');
  test::OnlyTheseFonts fonts;
  fonts.Install("two.ttc", test::Collection({sans, gothic}));
  EXPECT_THAT(Names(EnumerateFaces()),
              ::testing::ElementsAre(u"DejaVu Sans Mono", u"IPAGothic", u"@IPAGothic"));
  EXPECT_EQ(FontProbe(u"DejaVu Sans Mono", 50).Points(U'g'), sans_points);
  EXPECT_EQ(FontProbe(u"@IPAゴシック", 50).Points(U'永'), gothic_points);
}

TEST(FontFiles, SystemWithoutFonts) {
  test::OnlyTheseFonts fonts;
  EXPECT_TRUE(EnumerateFaces().empty());
  const auto context = CreateMeasuringContext();
  EXPECT_EQ(context->CreateFontIndirect(SystemLogFont()), nullptr);
  TextMetrics metrics;
  GlyphMetrics glyph;
  Extent extent;
  EXPECT_FALSE(context->GetTextMetrics(&metrics));
  EXPECT_FALSE(context->GetTextExtent(u"A", &extent));
  EXPECT_EQ(context->GetGlyphOutline(U'A', kGgoNative, &glyph, 0, nullptr, Mat2{}), kGdiError);
}

}  // namespace
}  // namespace kerno
