#include <gtest/gtest.h>

#include "outline/typesetter.h"
#include "support/fake_device_context.h"

namespace kerno {
namespace {

using Points = std::vector<std::pair<double, double>>;

// A is a segment from (1, 0) to (2, 1) in a cell 10 wide, B one in a cell 7 wide, 5 high.
FakeDeviceContext Context() {
  FakeDeviceContext dc;
  dc.metrics.tmHeight = 20;
  dc.metrics.tmAscent = 16;
  dc.metrics.tmDescent = 4;
  dc.metrics.tmAveCharWidth = 6;
  NativeBuffer a, b;
  a.Polygon(1, 0).Record(1, {{2, 1}});
  b.Polygon(0, 0).Record(1, {{3, 5}});
  dc.glyphs[U'A'] = {{1, 1, 1, 1, 10, 0}, a.bytes()};
  dc.glyphs[U'B'] = {{3, 5, 0, 5, 7, 0}, b.bytes()};
  dc.glyphs[U'𠮷'] = {{1, 1, 1, 1, 30, 0}, a.bytes()};
  dc.glyphs[U' '] = {{1, 1, 0, 0, 4, 0}, {}};
  return dc;
}

// Where the first point of each contour lies.
Points Starts(const GlyphContours& contours) {
  Points starts;
  size_t at = 0;
  for (const uint32_t count : contours.counts) {
    starts.push_back({contours.points[at].x, contours.points[at].y});
    at += count;
  }
  return starts;
}

TEST(LayoutString, PenFollowsTheRulesOfLinesAndDirections) {
  LayoutOptions across, down, cell;
  down.vertical = cell.vertical = true;
  cell.pitch = VerticalPitch::kCell;
  const struct {
    const char16_t* text;
    LayoutOptions options;
    Points starts;
  } cases[] = {
      {u"AB", across, {{2, 1}, {13, 5}}},
      {u"A\r\nB", across, {{2, 1}, {3, -15}}},
      {u"A\nB", across, {{2, 1}, {13, -15}}},
      {u"A\rB", across, {{2, 1}, {3, 5}}},
      {u"A\tB", across, {{2, 1}, {19, 5}}},
      {u"A B", across, {{2, 1}, {17, 5}}},
      {u"𠮷B", across, {{2, 1}, {33, 5}}},
      {u"AB", down, {{2, -4}, {3, -6}}},     // (10 + 1) / 2 = 5, then (7 + 5) / 2 = 6 more
      {u"A\nB", down, {{2, -4}, {3, -26}}},  // a line feed still moves down
      {u"A B", down, {{2, -4}, {3, -8}}},    // (4 + 1) / 2 = 2
      {u"AB", cell, {{2, -9}, {3, -12}}},
      {u"", across, {}},
      {u"  ", across, {}},
  };
  for (const auto& c : cases) {
    FakeDeviceContext dc = Context();
    GlyphContours contours;
    const uint32_t count = LayoutString(dc, c.text, c.options, &contours);
    EXPECT_EQ(c.starts, Starts(contours)) << testing::PrintToString(std::u16string(c.text));
    EXPECT_EQ(c.starts.size(), count);
  }
}

TEST(LayoutString, ANulEndsTheTextAndARefusedCharacterIsPaintedEachTime) {
  FakeDeviceContext dc = Context();
  GlyphContours contours;
  EXPECT_EQ(1u, LayoutString(dc, std::u16string_view(u"A\0B", 3), {}, &contours));
  EXPECT_EQ(2u, LayoutString(dc, u"?A?B", {}, &contours)) << "appends";
  EXPECT_EQ((Points{{2, 1}, {2, 1}, {13, 5}}), Starts(contours));
  EXPECT_EQ(2u, dc.drawn.size());
  EXPECT_EQ(1u, LayoutString(dc, std::u16string{0xD842, u'A'}, {}, &contours));
}

TEST(LayoutString, CharacterAngleTurnsEachGlyphAboutItsCell) {
  FakeDeviceContext dc = Context();
  const auto font = dc.CreateFontIndirect({});
  dc.SelectFont(font.get());
  LayoutOptions turned;
  turned.character_angle = -90;
  GlyphContours contours;
  LayoutString(dc, u"AA", turned, &contours);
  // Centre (5, 6): (2, 1) lies (-3, -5) from it, a quarter turn clockwise makes that (-5, 3).
  EXPECT_EQ((Points{{0, 9}, {10, 9}}), Starts(contours));
  contours = {};
  LayoutString(dc, u"A", {}, &contours);
  EXPECT_EQ((Points{{2, 1}}), Starts(contours)) << "the other angle's outlines are not used again";
}

TEST(MeasureString, EstimatesLargeSizesAndAsksTheContextOtherwise) {
  const std::u16string mixed = u"あA";
  const struct {
    bool vertical;
    int32_t height, width;
    int32_t length;
  } cases[] = {{false, 6000, 0, 9000},
               {false, 6000, 100, 300},
               {true, 6000, 100, 9000},
               {false, 100, 5000, 15000}};
  FakeDeviceContext dc = Context();
  for (const auto& c : cases) {
    EXPECT_EQ(c.length,
              MeasureString(&dc, mixed, c.vertical, c.height, c.width, 0, 0, u"x", 400).length);
  }
  EXPECT_TRUE(dc.created.empty());
  EXPECT_EQ(3 * 50, MeasureString(nullptr, u"ｱｲA", false, 100, 0, 0, 0, u"x", 400).length);
  const std::u16string endless(100'000, u'あ');
  EXPECT_EQ(INT32_MAX, MeasureString(nullptr, endless, false, 30'000, 0, 0, 0, u"x", 400).length);

  EXPECT_EQ(20, MeasureString(&dc, u"AB", false, 100, 30, 1.55, 2, u"x", 400).length);
  EXPECT_EQ(100, dc.created.back().height);
  EXPECT_EQ(30, dc.created.back().width);
  EXPECT_EQ(15, dc.created.back().escapement);
  EXPECT_EQ(20, dc.created.back().orientation);
  (void)MeasureString(&dc, u"AB", true, 100, 0, 1, 2, u"x", 400);
  EXPECT_EQ(100, dc.created.back().height) << "the height where the width is 0";
  EXPECT_EQ(50, dc.created.back().width);
  EXPECT_EQ(-870, dc.created.back().escapement);
  EXPECT_EQ(-880, dc.created.back().orientation);
  (void)MeasureString(&dc, u"AB", false, 100, 0, 1e300, -1e300, u"x", 400);
  EXPECT_EQ(INT32_MAX, dc.created.back().escapement);
  EXPECT_EQ(INT32_MIN, dc.created.back().orientation);
}

}  // namespace
}  // namespace kerno
