#include "platform/posix/vertical_forms.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
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

// By a quarter turn about the pen, counter-clockwise or clockwise.
std::vector<FixedPoint> Turned(std::vector<FixedPoint> points, int quarters) {
  for (auto& [x, y] : points) {
    std::swap(x, y);
    (quarters > 0 ? x : y) *= -1;
  }
  return points;
}

// What a reader of a column sees: each glyph turned clockwise in its cell.
std::vector<FixedPoint> InColumn(const FontProbe& font, char32_t ch) {
  const TextMetrics m = font.metrics();
  const int32_t middle_x = font.Glyph(ch).metrics.gmCellIncX * (kOne / 2);
  const int32_t middle_y = (m.tmAscent - m.tmDescent) * (kOne / 2);
  std::vector<FixedPoint> points = Turned(font.Points(ch), -1);
  for (auto& [x, y] : points) {
    x += middle_x - middle_y;
    y += middle_y + middle_x;
  }
  return points;
}

// The turned outline is the upright one, moved: by the vertical origin and so that the em square's
// middle keeps its height. 日 fills its cell in each of these faces, whose em square reaches from
// 246 units of 2048 below the base line to 1802 above.
TEST(VerticalForms, UprightCharactersAreTurnedAndOthersStay) {
  for (const char16_t* name : {u"IPAGothic", u"IPAPGothic", u"IPAMincho", u"IPAPMincho"}) {
    for (const int32_t em : {7, 90, 100, 1000}) {
      const FontProbe plain(name, -em);
      const FontProbe vertical(u"@" + std::u16string(name), -em);
      const std::string what = std::to_string(em);
      ASSERT_EQ(vertical.name(), u"@" + std::u16string(name));
      EXPECT_EQ(vertical.metrics().tmHeight, plain.metrics().tmHeight) << what;
      EXPECT_EQ(vertical.metrics().tmAveCharWidth, plain.metrics().tmAveCharWidth) << what;
      const auto raster = [em](double units) {
        return static_cast<int32_t>(std::floor(units * em * 64 / 2048 + 0.5)) * (kOne / 64);
      };
      const int32_t right = raster(1802);
      const int32_t up = raster((1802 - 246) / 2.0) - em * (kOne / 2);
      // The proportional faces have full-width alternates for their narrow kana.
      const bool proportional = std::u16string_view(name).starts_with(u"IPAP");
      for (const char32_t ch :
           std::u32string_view(proportional ? U"永龍!A8ｱ" : U"永龍!A8ｱあアＡ")) {
        const bool stays = ch < 0x100 || ch == U'ｱ';
        auto expected = plain.Points(ch);
        if (!stays) {
          expected = Turned(std::move(expected), 1);
          for (auto& [x, y] : expected) {
            x += right;
            y += up;
          }
        }
        EXPECT_EQ(vertical.Points(ch), expected) << what << " U+" << std::hex << uint32_t{ch};
        EXPECT_EQ(vertical.Glyph(ch).metrics.gmCellIncX, plain.Glyph(ch).metrics.gmCellIncX);
      }
    }
  }
}

TEST(VerticalForms, MetricsAgreeWithTheOutline) {
  for (const char16_t* name : {u"@IPAGothic", u"@IPAPMincho"}) {
    const FontProbe font(name, 100);
    for (const char32_t ch : std::u32string_view(U"永あ、。ー「（）龍ゃッＡＷ〒…ｱAgW8")) {
      const GlyphMetrics m = font.Glyph(ch).metrics;
      const FixedBox box = BoxOf(font.Points(ch));
      const int32_t slack = 2 * kOne;  // hinted boxes are whole pixels around the outline
      const auto near = [slack](int32_t outer, int32_t inner, int sign) {
        return sign * (inner - outer) >= 0 && sign * (inner - outer) < slack;
      };
      const int32_t left = m.gmptGlyphOriginX * kOne;
      const int32_t top = m.gmptGlyphOriginY * kOne;
      EXPECT_TRUE(near(left, box.left, 1) && near(top, box.top, -1) &&
                  near(left + static_cast<int32_t>(m.gmBlackBoxX) * kOne, box.right, -1) &&
                  near(top - static_cast<int32_t>(m.gmBlackBoxY) * kOne, box.bottom, 1))
          << "U+" << std::hex << uint32_t{ch};
    }
  }
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

// A character that lies on its side stands where the font has an alternate for it, and one that
// would have a form of its own lies where the font has none.
TEST(VerticalForms, TheFontDecidesForEachCharacter) {
  const FontProbe fixed(u"@IPAGothic", 100);
  const FontProbe fixed_plain(u"IPAGothic", 100);
  EXPECT_EQ(fixed.Points(U'：'), fixed_plain.Points(U'：')) << "no alternate";
  EXPECT_NE(FontProbe(u"@IPAPGothic", 100).Points(U'：'),
            FontProbe(u"IPAPGothic", 100).Points(U'：'));
  EXPECT_NE(fixed.Points(U'“'), fixed_plain.Points(U'“')) << "an alternate of its own";
}

// Down a column, the proportional faces have advances of their own: half the em for a comma. The
// glyph stands in that shorter cell.
TEST(VerticalForms, AdvancesDownTheColumn) {
  const FontProbe font(u"@IPAPGothic", -1024);
  for (const auto& [ch, advance] : {std::pair{U'日', 1024}, std::pair{U'、', 512}}) {
    const GlyphMetrics m = font.Glyph(ch).metrics;
    EXPECT_EQ(m.gmCellIncX, advance);
    EXPECT_GE(m.gmptGlyphOriginX, 0);
    EXPECT_LE(m.gmptGlyphOriginX + static_cast<int32_t>(m.gmBlackBoxX), advance);
  }
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
