#include "outline/glyph_outline.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "support/fake_device_context.h"

namespace kerno {
namespace {

using Points = std::vector<std::pair<double, double>>;

Points Flat(const GlyphContours& contours) {
  Points flat;
  for (const P2& p : contours.points) flat.push_back({p.x, p.y});
  return flat;
}

uint32_t Parse(const std::vector<uint8_t>& bytes, GlyphContours* contours) {
  return ParseNativeOutline(bytes.data(), bytes.size(), contours);
}

PointFx Fixed(double x, double y) {
  return {static_cast<int32_t>(x * 65536), static_cast<int32_t>(y * 65536)};
}

TEST(FlattenQSpline, StepsFollowTheLargestDelta) {
  const struct {
    double delta;
    uint32_t steps;
  } cases[] = {{8.99, 2}, {9, 3}, {11.99, 3}, {12, 4}, {62.99, 20}, {63, 30}, {5000, 30}};
  for (const auto& c : cases) {
    for (const double d : {c.delta, -c.delta}) {
      // The end's and the control point's differences in turn are the largest.
      const PointFx shapes[][2] = {{Fixed(d, 0), Fixed(d / 2, 0)}, {Fixed(0, d / 2), Fixed(0, d)}};
      for (const auto& [control, end] : shapes) {
        std::vector<P2> points = {{7, 7}};
        EXPECT_EQ(c.steps, FlattenQSpline(&points, Fixed(0, 0), control, end)) << d;
        EXPECT_EQ(c.steps + 1, points.size());
      }
    }
  }
}

TEST(ParseNativeOutline, ContourBeginsBehindItsStartAndCloses) {
  GlyphContours contours;
  NativeBuffer square;
  square.Polygon(1, 2).Record(1, {{3, 2}, {3, 4.5}}).Record(1, {{1, 4.5}});
  EXPECT_EQ(1u, Parse(square.bytes(), &contours));
  EXPECT_EQ((Points{{3, 2}, {3, 4.5}, {1, 4.5}, {1, 2}, {3, 2}}), Flat(contours));
  EXPECT_EQ((std::vector<uint32_t>{5}), contours.counts);

  NativeBuffer bare;  // no records: the start twice
  bare.Polygon(1, 2).Polygon(5, 6).Record(1, {{7, 8}}).Record(1, {}).Record(2, {{9, 9}});
  EXPECT_EQ(2u, Parse(bare.bytes(), &contours));
  EXPECT_EQ((Points{{1, 2}, {1, 2}, {7, 8}, {9, 9}, {5, 6}, {7, 8}}), Flat(contours));
  EXPECT_EQ((std::vector<uint32_t>{2, 4}), contours.counts);

  EXPECT_EQ(0u, ParseNativeOutline(nullptr, 0, &contours));
  EXPECT_TRUE(contours.points.empty());
}

TEST(ParseNativeOutline, SplinesStartAtThePointBeforeAndSplitAtMidpoints) {
  GlyphContours contours;
  NativeBuffer curve;
  curve.Polygon(0, 0)
      .Record(2, {{0, 4}, {4, 4}, {4, 0}})
      .Record(1, {{2, -1}})
      .Record(2, {{1, -2}, {0, 0}});
  ASSERT_EQ(1u, Parse(curve.bytes(), &contours));
  // Two steps a piece: 2 + 2 points, the line's point, 2 points, the start and the first point.
  ASSERT_EQ((std::vector<uint32_t>{9}), contours.counts);
  EXPECT_EQ(
      (Points{{0.5, 3}, {2, 4}, {3.5, 3}, {4, 0}, {2, -1}, {1, -1.25}, {0, 0}, {0, 0}, {0.5, 3}}),
      Flat(contours));
}

TEST(ParseNativeOutline, MidpointsTruncateTowardsZeroWithoutOverflow) {
  NativeBuffer extremes;
  extremes.Polygon(0, 0);
  extremes.Put<uint16_t>(2).Put<uint16_t>(3);
  for (const int32_t v : {INT32_MIN, 3, INT32_MIN, -6, 0, 0}) extremes.Put(v);
  std::vector<uint8_t> bytes = extremes.bytes();
  const auto length = static_cast<uint32_t>(bytes.size());
  std::memcpy(bytes.data(), &length, 4);
  GlyphContours contours;
  ASSERT_EQ(1u, Parse(bytes, &contours));
  EXPECT_EQ(-32768.0, contours.points[29].x);
  EXPECT_EQ(-1 / 65536.0, contours.points[29].y) << "(3 - 6) / 2 is -1";
}

TEST(ParseNativeOutline, EndsAtWhatItDoesNotKnow) {
  const auto good = [] {
    NativeBuffer b;
    b.Polygon(0, 0).Record(1, {{1, 0}, {1, 1}});
    return b;
  };
  GlyphContours contours;
  NativeBuffer cubic = good();
  cubic.Polygon(5, 5).Record(1, {{6, 6}}).Record(3, {{7, 7}, {8, 8}, {9, 9}});
  EXPECT_EQ(1u, Parse(cubic.bytes(), &contours));
  EXPECT_EQ(1u, contours.counts.size());
  NativeBuffer other_type = good();
  other_type.Polygon(5, 5, 23).Record(1, {{6, 6}});
  EXPECT_EQ(1u, Parse(other_type.bytes(), &contours));
  NativeBuffer zero_length = good();
  zero_length.Put<uint32_t>(0).Put<uint32_t>(24).Put<uint64_t>(0);
  EXPECT_EQ(1u, Parse(zero_length.bytes(), &contours));
  NativeBuffer huge_count = good();
  huge_count.Polygon(5, 5).Put<uint16_t>(2).Put<uint16_t>(65535);
  EXPECT_LE(Parse(huge_count.bytes(), &contours), 2u);
}

// Runs under the address sanitizer: every buffer is exactly as long as it says.
TEST(ParseNativeOutline, ReadsNothingOutsideTheBuffer) {
  NativeBuffer whole;
  whole.Polygon(0, 0).Record(1, {{1, 0}, {1, 1}}).Record(2, {{0, 4}, {4, 4}, {4, 0}});
  whole.Polygon(9, 9).Record(2, {{8, 8}, {7, 7}});
  GlyphContours contours;
  for (size_t size = 0; size <= whole.bytes().size(); ++size) {
    const std::vector<uint8_t> cut(whole.bytes().begin(),
                                   whole.bytes().begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_LE(Parse(cut, &contours), 2u) << size;
  }
  EXPECT_EQ(2u, contours.counts.size());
  std::mt19937 random(1);
  for (int round = 0; round < 20000; ++round) {
    std::vector<uint8_t> damaged = whole.bytes();
    for (int i = 0; i < 3; ++i) damaged[random() % damaged.size()] = static_cast<uint8_t>(random());
    Parse(damaged, &contours);
  }
}

TEST(GetGlyphContours, AsksWithTheIdentityAndReportsARefusalInTheContext) {
  FakeDeviceContext dc;
  NativeBuffer box;
  box.Polygon(0, 0).Record(1, {{1, 0}, {1, 1}});
  dc.glyphs[U'A'] = {{2, 3, 0, 1, 10, 0}, box.bytes()};
  dc.glyphs[U' '] = {{1, 1, 0, 0, 5, 0}, {}};
  GlyphMetrics metrics;
  GlyphContours contours;
  EXPECT_EQ(1u, GetGlyphContours(dc, U'A', &metrics, &contours));
  EXPECT_EQ(10, metrics.gmCellIncX);
  EXPECT_EQ(0x10000, dc.last_matrix.eM11);
  EXPECT_EQ(0, dc.last_matrix.eM12);

  EXPECT_EQ(0u, GetGlyphContours(dc, U'?', &metrics, &contours));
  EXPECT_EQ(4u, contours.points.size()) << "untouched on failure";
  ASSERT_EQ(1u, dc.drawn.size());
  EXPECT_EQ(u"GDI_ERROR", dc.drawn[0].text);
  EXPECT_EQ(0, dc.drawn[0].x + dc.drawn[0].y);

  dc.shrinks_between_calls = 4;
  EXPECT_EQ(0u, GetGlyphContours(dc, U'A', &metrics, &contours));
  EXPECT_EQ(4u, contours.points.size()) << "the second call gave another size";
  dc.shrinks_between_calls = 0;
  EXPECT_EQ(0u, GetGlyphContours(dc, U' ', &metrics, &contours));
  EXPECT_EQ(5, metrics.gmCellIncX);
  EXPECT_TRUE(contours.points.empty());
}

}  // namespace
}  // namespace kerno
