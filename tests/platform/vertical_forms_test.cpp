#include "platform/posix/vertical_forms.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "platform/font_faces.h"
#include "support/font_files.h"
#include "support/font_probe.h"

namespace kerno {
namespace {

using test::FixedPoint;
using test::FontProbe;

constexpr int32_t kOne = 0x10000;

struct FixedBox {
  int32_t left, bottom, right, top;
  int32_t width() const { return right - left; }
  int32_t height() const { return top - bottom; }
};

FixedBox BoxOf(const std::vector<FixedPoint>& points) {
  FixedBox box{INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};
  for (const auto& [x, y] : points) {
    box = {std::min(box.left, x), std::min(box.bottom, y), std::max(box.right, x),
           std::max(box.top, y)};
  }
  return box;
}

// What a reader of a column sees: each glyph turned clockwise in its cell.
std::vector<FixedPoint> InColumn(const FontProbe& font, char32_t ch) {
  const TextMetrics m = font.metrics();
  const int32_t middle_x = font.Glyph(ch).metrics.gmCellIncX * (kOne / 2);
  const int32_t middle_y = (m.tmAscent - m.tmDescent) * (kOne / 2);
  std::vector<FixedPoint> points = font.Points(ch);
  for (auto& p : points) {
    p = {p.second + middle_x - middle_y, -p.first + middle_y + middle_x};
  }
  return points;
}

// The outcome that a reader expects of a column: marks in their corner, bars and brackets along it.
TEST(VerticalForms, ColumnsReadAsExpected) {
  for (const char16_t* name : {u"@IPAGothic", u"@IPAMincho"}) {
    const FontProbe font(name, 100);
    const TextMetrics m = font.metrics();
    const int32_t middle_y = (m.tmAscent - m.tmDescent) * (kOne / 2);
    for (const char32_t ch : {U'、', U'。'}) {
      const FixedBox box = BoxOf(InColumn(font, ch));
      EXPECT_GT(box.left, font.Glyph(ch).metrics.gmCellIncX * (kOne / 2));
      EXPECT_GT(box.bottom, middle_y);
    }
    for (const char32_t ch : {U'ー', U'〜', U'…', U'―'}) {
      const FixedBox box = BoxOf(InColumn(font, ch));
      EXPECT_GT(box.height(), 3 * box.width()) << std::hex << uint32_t{ch};
    }
    for (const char32_t ch : {U'（', U'「', U'』'}) {
      const FixedBox box = BoxOf(InColumn(font, ch));
      EXPECT_GT(box.width(), box.height()) << std::hex << uint32_t{ch};
    }
    // An opening bracket keeps near what it opens: in the lower half of its cell.
    EXPECT_LT(BoxOf(InColumn(font, U'（')).top, middle_y);
    EXPECT_GT(BoxOf(InColumn(font, U'）')).bottom, middle_y);
    // Latin lies on its side: what was up points right.
    const FixedBox letter = BoxOf(InColumn(font, U'l'));
    EXPECT_GT(letter.width(), letter.height());
  }
}

// Without vertical alternates in the font, a bar still runs along the column.
TEST(VerticalForms, FaceWithoutAlternatesTurnsBarsAndBrackets) {
  auto bytes = test::ReadFontFile(test::InstalledFontPath(u"IPAGothic"));
  bytes.replace(test::TableEntry(bytes, "GSUB"), 4, "GSUX");
  test::OnlyTheseFonts fonts;
  fonts.Install("plain.ttf", test::WithFamilyName(bytes, u"No Alternates"));
  const FontProbe font(u"@No Alternates", 100);
  ASSERT_EQ(font.name(), u"@No Alternates");
  const FixedBox bar = BoxOf(InColumn(font, U'ー'));
  EXPECT_GT(bar.height(), 3 * bar.width());
  const FontProbe plain(u"No Alternates", 100);
  // A comma stands as in horizontal text.
  const FixedBox comma = BoxOf(InColumn(font, U'、'));
  const FixedBox common = BoxOf(plain.Points(U'、'));
  EXPECT_EQ(comma.width(), common.width());
  EXPECT_EQ(comma.height(), common.height());
  EXPECT_LT(std::abs(comma.left - common.left), 5 * kOne);
  EXPECT_LT(std::abs(comma.bottom - common.bottom), 5 * kOne);
}

TEST(VerticalForms, OnlyFacesWithFullWidthCharactersHaveAVerticalForm) {
  EXPECT_TRUE(IsFaceInstalled(u"@IPA明朝"));
  EXPECT_FALSE(IsFaceInstalled(u"@DejaVu Sans"));
  EXPECT_FALSE(IsFaceInstalled(u"@"));
  EXPECT_TRUE(FontProbe(u"@DejaVu Sans", 20).name().starts_with(u"@"));  // the mapper's choice
  for (const char32_t ch : {0u, 0x110000u, 0xFFFFFFFFu}) {
    EXPECT_EQ(VerticalOrientationOf(ch), VerticalOrientation::kRotated);
  }
}

}  // namespace
}  // namespace kerno
