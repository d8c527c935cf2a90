#include "outline/draw_outline.h"

#include <gtest/gtest.h>

#include "support/fake_settings.h"
#include "support/recording_drawing_context.h"

namespace kerno {
namespace {

constexpr char16_t kTooLargeText[] = u"文字列を分割して指定してください";

// A glyph of `contours` contours with `points` stored points each (two of them the start point and
// the repeated first one), no wider than a few units.
FakeGlyph Zigzag(int contours, int points) {
  NativeBuffer buffer;
  for (int i = 0; i < contours; ++i) {
    NativeBuffer::Points record;
    for (int p = 0; p < points - 2; ++p) record.push_back({p % 3 + 1.5, p % 2 - 2.75});
    buffer.Polygon(0.5, 0).Record(1, record);
  }
  return {{4, 4, 0, 2, 10, 0}, buffer.bytes()};
}

TextRequest Request(std::u16string text) {
  TextRequest request;
  request.text = std::move(text);
  return request;
}

class DrawOutlineTest : public testing::Test {
 protected:
  DrawOutlineTest() {
    dc_.glyphs[U'a'] = Zigzag(1, 1000);
    dc_.glyphs[U'b'] = Zigzag(1, 999);
    dc_.glyphs[U'c'] = Zigzag(1, 1001);
    dc_.glyphs[U'M'] = Zigzag(499, 3);
    dc_.glyphs[U'N'] = Zigzag(500, 3);
    dc_.glyphs[U'O'] = Zigzag(2, 5);
    dc_.glyphs[U' '] = {{1, 1, 0, 0, 10, 0}, {}};
  }
  RecordingDrawingContext dc_;
  FakeSettings settings_;
};

TEST_F(DrawOutlineTest, LimitsOfTheDirectPathAreExact) {
  const struct {
    std::u16string text;
    size_t points, contours;
    bool direct;
  } cases[] = {
      {u"aaaaaaaaab", 9999, 10, true},
      {u"aaaaaaaaaa", 10000, 10, false},
      {u"aaaaaaaaac", 10001, 10, false},
      {u"M", 1497, 499, true},
      {u"N", 1500, 500, false},
      {u"Maaaaaaaaa", 10497, 508, false},
      {u"   ", 0, 0, true},
  };
  for (const auto& c : cases) {
    for (const int setting : {0, 1}) {
      settings_.ints[{u"Debug\\DrawTTOutline", u"UseP2A_Ary"}] = setting;
      dc_.calls.clear();
      dc_.drawn.clear();
      const OutlineDrawing result = DrawOutline(dc_, Request(c.text));
      const bool drawn = c.direct || setting == 1;
      EXPECT_EQ(result, drawn ? OutlineDrawing::kDrawn : OutlineDrawing::kTooLarge) << c.points;
      ASSERT_EQ(dc_.calls.size(), drawn ? 1u : 0u) << c.points << " points, setting " << setting;
      ASSERT_EQ(dc_.drawn.size(), drawn ? 0u : 1u);
      if (drawn) {
        EXPECT_EQ(dc_.calls[0].points.size(), c.points);
        EXPECT_EQ(dc_.calls[0].counts.size(), c.contours);
      } else {
        EXPECT_EQ(dc_.drawn[0].text, kTooLargeText);
        EXPECT_EQ(dc_.drawn[0].x, 0);
        EXPECT_EQ(dc_.drawn[0].y, 0);
      }
    }
  }
}

TEST_F(DrawOutlineTest, CutsToWholeUnitsTowardsZeroInOneCallOnBothPaths) {
  NativeBuffer buffer;
  buffer.Polygon(-1.75, 1.75).Record(1, {{2.75, 0.5}, {-0.5, -2.75}});
  dc_.glyphs[U'x'] = {{4, 4, 0, 2, 10, 0}, buffer.bytes()};
  for (const int setting : {0, 1}) {
    settings_.ints[{u"Debug\\DrawTTOutline", u"UseP2A_Ary"}] = setting;
    dc_.calls.clear();
    TextRequest request = Request(u"xO");
    // The block's box reaches from (-1.75, -2.75) to (13.5, 1.75): this puts its origin at (0, 0).
    request.placement.insertion = {(13.5 - 1.75) / 2, -(1.75 - 2.75) / 2};
    DrawOutline(dc_, request);
    ASSERT_EQ(dc_.calls.size(), 1u);
    EXPECT_EQ(dc_.calls[0].kind, RecordingDrawingContext::Kind::kWholePolygons);
    EXPECT_EQ(dc_.calls[0].counts, (std::vector<uint32_t>{4, 5, 5}));
    const std::vector<DevicePoint>& points = dc_.calls[0].points;
    const double expected[4][2] = {{2, 0}, {0, 2}, {-1, -1}, {2, 0}};  // y down
    for (size_t i = 0; i < 4; ++i) {
      EXPECT_EQ(points[i].x, expected[i][0]) << i;
      EXPECT_EQ(points[i].y, expected[i][1]) << i;
    }
  }
}

TEST_F(DrawOutlineTest, DrawsWithCopiesAndSelectsEverythingBack) {
  const auto font = dc_.CreateFontIndirect({});
  const auto pen = dc_.CreatePenIndirect({.style = PenStyle::kDot, .width = 3, .color = 0x123456});
  const auto brush =
      dc_.CreateBrushIndirect({.style = BrushStyle::kHatched, .color = 9, .hatch = 4});
  dc_.SelectFont(font.get());
  dc_.SelectPen(pen.get());
  dc_.SelectBrush(brush.get());
  for (const char16_t* text : {u"O", u"N"}) {
    dc_.calls.clear();
    DrawOutline(dc_, Request(text));
    for (const auto& call : dc_.calls) {
      EXPECT_EQ(call.pen, pen->Data());
      EXPECT_EQ(call.brush, brush->Data());
    }
    EXPECT_EQ(dc_.SelectedFont(), font.get());
    EXPECT_EQ(dc_.CurrentPen(), pen.get());
    EXPECT_EQ(dc_.CurrentBrush(), brush.get());
    EXPECT_EQ(dc_.objects_alive, 2) << "the copies are destroyed";
  }
  dc_.SelectPen(nullptr);
  dc_.SelectBrush(nullptr);
  DrawOutline(dc_, Request(u"O"));
  EXPECT_EQ(dc_.SelectPen(nullptr), nullptr) << "the stock pen is selected back";
}

TEST_F(DrawOutlineTest, CoordinatesBeyondWholeUnitsStayAtTheLimit) {
  TextRequest request = Request(u"O");
  request.placement.insertion = {1e300, -1e300};
  DrawOutline(dc_, request);
  ASSERT_EQ(dc_.calls.size(), 1u);
  for (const DevicePoint& p : dc_.calls[0].points) {
    EXPECT_EQ(p.x, 2147483647.0);
    EXPECT_EQ(p.y, -2147483648.0);
  }
}

}  // namespace
}  // namespace kerno
