#include "outline/typesetter.h"

#include <gtest/gtest.h>

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

// The middles (5, 6) of A and (3.5, 6) of B come to x = 10, half an em; by whole cells each also
// moves down by as much as to the right, so that B, from -10 to -17, begins where A ends.
TEST(LayoutString, CellsOfAColumnHaveOneMiddleLine) {
  FakeDeviceContext dc = Context();
  LayoutOptions down;
  down.vertical = true;
  down.character_angle = -90;
  GlyphContours contours;
  LayoutString(dc, u"AB", down, &contours);
  EXPECT_EQ((Points{{5, 4}, {9, -4.5}}), Starts(contours));
  contours = {};
  down.pitch = VerticalPitch::kCell;
  LayoutString(dc, u"AB", down, &contours);
  EXPECT_EQ((Points{{5, -6}, {9, -17}}), Starts(contours));
}

TEST(LayoutString, KeepsOutlinesWithTheFont) {
  FakeDeviceContext dc = Context();
  const auto font = dc.CreateFontIndirect({});
  dc.SelectFont(font.get());
  GlyphContours contours;
  LayoutString(dc, u"AAAA𠮷𠮷", {}, &contours);
  EXPECT_EQ(4, dc.outline_calls);
  LayoutString(dc, u"A𠮷", {}, &contours);
  EXPECT_EQ(4, dc.outline_calls);
}

TEST(LayoutString, TellsWhereVerticalInkMeets) {
  FakeDeviceContext dc = Context();
  NativeBuffer tall;
  tall.Polygon(0, 0).Record(1, {{10, 0}, {10, 16}, {0, 16}});
  dc.glyphs[U'H'] = {{10, 16, 0, 16, 12, 0}, tall.bytes()};
  LayoutOptions down;
  down.vertical = true;
  const struct {
    const char16_t* text;
    VerticalPitch pitch;
    uint32_t overlapping;
  } cases[] = {{u"HHH", VerticalPitch::kClassic, 2},
               {u"HHH", VerticalPitch::kCell, 2},
               {u"H H", VerticalPitch::kCell, 0},
               {u"AAA", VerticalPitch::kClassic, 0}};
  for (const auto& c : cases) {
    GlyphContours contours;
    LayoutNotes notes;
    down.pitch = c.pitch;
    LayoutString(dc, c.text, down, &contours, &notes);
    EXPECT_EQ(c.overlapping, notes.overlapping) << testing::PrintToString(std::u16string(c.text));
  }
}

TEST(LayoutString, NamesWhatTheRasteriserRefused) {
  FakeDeviceContext dc = Context();
  GlyphContours contours;
  LayoutNotes notes;
  LayoutString(dc, u"ZAZ Y", {}, &contours, &notes);
  EXPECT_EQ((std::vector<char32_t>{U'Z', U'Y'}), notes.refused);
}

TEST(PlaceBlock, BoxHoldsTheOriginAndTheCentreLandsOnTheInsertion) {
  std::vector<P2> points = {{10, 10}, {20, 10}, {20, 30}};
  PlaceBlock(&points, {{100, 200}, 0, 0});
  // Box (0, 0) to (20, 30), centre (10, 15): y is turned down and (90, 215) added.
  EXPECT_EQ((P2{100, 205}), points[0]);
  EXPECT_EQ((P2{110, 185}), points[2]);
  std::vector<P2> blank;
  PlaceBlock(&blank, {{5, 5}, 30, 30});
  EXPECT_TRUE(blank.empty());
}

// The command line's test computes slants and other angles once more.
TEST(PlaceBlock, AQuarterTurnIsExact) {
  std::vector<P2> quarter = {{0, 0}, {20, 0}, {20, 40}};
  PlaceBlock(&quarter, {{0, 0}, 0, 90});  // counter-clockwise
  EXPECT_EQ((P2{20, 10}), quarter[0]);
  EXPECT_EQ((P2{20, -10}), quarter[1]);
  EXPECT_EQ((P2{-20, -10}), quarter[2]);
}

TEST(StringOutline, SelectsItsFontAndPutsTheFormerBack) {
  FakeDeviceContext dc = Context();
  const auto mine = dc.CreateFontIndirect({});
  dc.SelectFont(mine.get());
  TextRequest request;
  request.text = u"A";
  request.face.name = std::u16string(40, u'x');
  request.height = 77;
  request.width = 5;
  request.weight = 700;
  GlyphContours contours;
  contours.counts = {9};
  EXPECT_EQ(1u, StringOutline(dc, request, &contours));
  EXPECT_EQ(1u, contours.counts.size());
  EXPECT_EQ(mine.get(), dc.SelectedFont());
  EXPECT_EQ(77, dc.created.back().height);
  EXPECT_EQ(1, dc.created.back().char_set);
  EXPECT_EQ(31u, dc.created.back().face_name.size());
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
