#include "export/draw_parts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "export/hatch.h"
#include "support/fake_settings.h"
#include "support/recording_drawing_context.h"

namespace kerno {
namespace {

using Kind = RecordingDrawingContext::Kind;
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

// A vertex that the pool would not keep by itself: not-a-number equals every other.
int32_t AppendVertex(Parts* part, const P3& p) {
  part->vertices.Append(p);
  return static_cast<int32_t>(part->vertices.size()) - 1;
}

using Points = std::vector<std::pair<double, double>>;
Points PointsOf(const RecordingDrawingContext::Call& call) {
  Points points;
  for (const DevicePoint& p : call.points) points.emplace_back(p.x, p.y);
  return points;
}

class DrawPartsTest : public testing::Test {
 protected:
  DrawPartsTest() : part_(model_.parts.emplace_back()) {
    part_.pen.color = 0x0000FF;
    part_.brush.color = 0x00FF00;
  }
  PictureNotes Draw(const Affine& fit = FlippedY(1, {}), double detail = 0) {
    dc_.calls.clear();
    return DrawParts(dc_, model_, fit, {.detail = detail});
  }
  std::vector<RecordingDrawingContext::Call> Calls(Kind kind) const {
    std::vector<RecordingDrawingContext::Call> found;
    for (const auto& call : dc_.calls) {
      if (call.kind == kind) found.push_back(call);
    }
    return found;
  }

  FakeSettings settings_;
  PartsA model_;
  PartsElement& part_;
  RecordingDrawingContext dc_;
};

TEST(FitExtent, KeepsProportionsCentresAndTurnsYDown) {
  const struct {
    Extent3 box;
    double scale;
    DevicePoint low, high;  // where the box's corners land in 100 x 60 with margin 10
  } cases[] = {
      {{{0, 0, 0}, {40, 10, 0}}, 2, {10, 40}, {90, 20}},
      {{{-5, -5, 0}, {5, 15, 0}}, 2, {40, 50}, {60, 10}},
      {{{7, 7, 0}, {7, 7, 0}}, 1, {50, 30}, {50, 30}},
      {{{0, 3, 0}, {1e9, 3, 0}}, 8e-8, {10, 30}, {90, 30}},
      {{{0, 0, 0}, {1e-9, 5e-10, 0}}, 8e10, {10, 50}, {90, 10}},
  };
  for (const auto& c : cases) {
    const Affine fit = FitExtent(c.box, {0, 0, 100, 60}, 10);
    EXPECT_NEAR(PixelsPerUnit(fit), c.scale, c.scale * 1e-12);
    EXPECT_NEAR(Placed(fit, c.box.min).x, c.low.x, 1e-6);
    EXPECT_NEAR(Placed(fit, c.box.min).y, c.low.y, 1e-6);
    EXPECT_NEAR(Placed(fit, c.box.max).x, c.high.x, 1e-6);
    EXPECT_NEAR(Placed(fit, c.box.max).y, c.high.y, 1e-6);
  }
}

TEST_F(DrawPartsTest, LinesChainIntoPolylinesInThePartsPen) {
  part_.pen.width = 3;
  part_.pen.style = 1;
  part_.AddLine({0, 0, 0}, {10, 0, 0});
  part_.AddLine({10, 0, 0}, {10, 10, 0});
  part_.AddLine({10, 10, 0}, {0, 0, 0});
  part_.AddLine({50, 0, 0}, {60, 0, 0});
  part_.lines.items.push_back({0, 99});  // an index that names no vertex
  part_.lines.items.push_back({0, AppendVertex(&part_, {60, kNan, 0})});
  part_.AddLine({0, 0, 0}, {0, 5, 0});
  const PictureNotes notes = Draw({2, 1, 100});
  EXPECT_EQ(notes.left_out, 2u);
  const auto lines = Calls(Kind::kPolyline);
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(PointsOf(lines[0]), (Points{{1, 100}, {21, 100}, {21, 80}, {1, 100}}));
  EXPECT_EQ(PointsOf(lines[1]), (Points{{101, 100}, {121, 100}}));
  EXPECT_EQ(PointsOf(lines[2]), (Points{{1, 100}, {1, 90}}));
  EXPECT_EQ(lines[0].pen, (PenData{PenStyle::kDash, 6, 0x0000FF, 0}));
  EXPECT_EQ(dc_.SelectPen(nullptr), nullptr) << "selected back";
  EXPECT_EQ(dc_.objects_alive, 0);
}

TEST_F(DrawPartsTest, DetailDropsNearPointsAndKeepsTheLastAndTheTinyVisible) {
  for (int i = 0; i < 100; ++i) part_.AddLine({i * 0.1, 0, 0}, {(i + 1) * 0.1, 0, 0});
  model_.parts.emplace_back().AddLine({20, 0, 0}, {20.1, 0, 0});
  Draw({}, 0.5);
  const auto lines = Calls(Kind::kPolyline);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_LT(lines[0].points.size(), 25u);
  EXPECT_GT(lines[0].points.size(), 15u);
  EXPECT_EQ(lines[0].points.back().x, 10);
  EXPECT_EQ(PointsOf(lines[1]), (Points{{20, 0}, {20.5, 0}}));
  Draw();
  EXPECT_EQ(Calls(Kind::kPolyline)[0].points.size(), 101u);
}

TEST_F(DrawPartsTest, FacesAreFilledWithoutOutlineAndPiecesTogether) {
  const P3 triangle[] = {{0, 0, 0}, {4, 0, 0}, {0, 4, 0}};
  const P3 turned[] = {{4, 0, 0}, {0, 4, 0}, {4, 4, 0}};
  const P3 against[] = {{8, 0, 0}, {8, 4, 0}, {4, 4, 0}};
  const P3 star[] = {{0, 0, 0}, {9, 5, 0}, {-1, 5, 0}, {8, 0, 0}, {4, 9, 0}};
  const P3 broken[] = {{0, 0, 0}, {kInf, 0, 0}, {0, 4, 0}};
  for (const auto& loop : {triangle, turned, against}) part_.AddFace({loop, 3}, 0);
  part_.AddFace(star, 0);
  part_.AddFace(broken, 0);
  EXPECT_EQ(Draw().left_out, 1u);
  const auto fills = Calls(Kind::kPolygons);
  ASSERT_EQ(fills.size(), 2u);
  EXPECT_EQ(fills[0].counts, (std::vector<uint32_t>{3, 3, 3}));
  EXPECT_EQ(fills[0].mode, FillMode::kWinding);
  for (size_t i = 0; i < 9; i += 3) {  // y down: the same way round means the same sign
    const auto& p = fills[0].points;
    EXPECT_LT((p[i + 1].x - p[i].x) * (p[i + 2].y - p[i].y) -
                  (p[i + 2].x - p[i].x) * (p[i + 1].y - p[i].y),
              0)
        << i;
  }
  EXPECT_EQ(fills[1].mode, FillMode::kAlternate);
  EXPECT_EQ(fills[1].points.size(), 5u);
  EXPECT_EQ(fills[0].pen.style, PenStyle::kNull);
  EXPECT_EQ(fills[0].brush.color, 0x00FF00u);
  EXPECT_EQ(dc_.fill_mode(), FillMode::kAlternate);

  part_.brush.style = 1;
  Draw();
  EXPECT_TRUE(Calls(Kind::kPolygons).empty()) << "hollow";
}

TEST_F(DrawPartsTest, HatchesStayInsideTheirFace) {
  const P3 face[] = {{0, 0, 0}, {100, 0, 0}, {0, 100, 0}};
  part_.AddFace(face, 0);
  part_.brush.style = 2;
  for (int32_t hatch = -1; hatch <= HatchCount(); ++hatch) {
    part_.brush.hatch = hatch;
    Draw();
    const auto lines = Calls(Kind::kPolyline);
    const auto dots = Calls(Kind::kCircle);
    const size_t fills = Calls(Kind::kPolygons).size();
    const HatchKind kind = HatchKindOf(hatch);
    EXPECT_EQ(fills, kind == HatchKind::kSolid ? 1u : 0u) << HatchName(hatch);
    EXPECT_EQ(lines.size() + dots.size() > 0, kind == HatchKind::kFigures) << HatchName(hatch);
    for (const auto& line : lines) {
      EXPECT_EQ(line.pen, (PenData{.color = 0x00FF00}));
      for (const DevicePoint& p : line.points) {
        EXPECT_GE(p.x, -1e-9) << HatchName(hatch);
        EXPECT_LE(p.y, 1e-9) << HatchName(hatch);
        EXPECT_LE(p.x - p.y, 100 + 1e-9) << HatchName(hatch);
      }
    }
  }
  part_.brush.hatch = 0;  // rows every 8 units: 0 to 96 (the one at 0 runs along the edge)
  Draw();
  EXPECT_NEAR(static_cast<double>(Calls(Kind::kPolyline).size()), 12.5, 0.5);
}

TEST_F(DrawPartsTest, CirclesArcsEdgesAndPoints) {
  part_.AddCircle({0, 0, 0}, 5, 0, {0, 0, 0}, {0, 0, 0});
  part_.circles.items[0].first = part_.circles.items[0].second = -1;
  part_.AddCircle({0, 0, 0}, 5, 0, {5, 0, 0}, {0, 5, 0});
  part_.AddCircle({0, 0, 0}, 5, 0, {0, 5, 0}, {5, 0, 0});
  part_.AddCircle({0, 0, 0}, kNan, 0, {5, 0, 0}, {0, 5, 0});
  part_.edges.items.push_back({{1, 2, 45, -1, -1, 0, -1}});
  const P3 spots[] = {{7, 7, 0}};
  part_.AddPointSet(spots, 0, 0, 0);
  part_.child = std::make_unique<Parts>();
  part_.child->AddLine({1, 1, 0}, {2, 2, 0});
  EXPECT_EQ(Draw({2, 0, 0}).left_out, 1u);
  const auto arcs = Calls(Kind::kArc);
  ASSERT_EQ(arcs.size(), 3u);
  const double expected[][2] = {{0, 360}, {0, 90}, {90, 270}};
  for (size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(arcs[i].radius, 10) << i;
    EXPECT_NEAR(arcs[i].start, expected[i][0], 1e-12) << i;
    EXPECT_NEAR(arcs[i].sweep, expected[i][1], 1e-12) << i;
  }
  EXPECT_EQ(Calls(Kind::kPolyline).size(), 4u);  // the edge, a cross, the child's line
}

TEST_F(DrawPartsTest, TextsGoThroughTheOutlineInFineUnits) {
  NativeBuffer square;
  square.Polygon(0, 0).Record(1, {{40, 0}, {40, 40}, {0, 40}});
  dc_.glyphs[U'a'] = {{40, 40, 0, 40, 40, 0}, square.bytes()};
  TextLine line;
  line.text = u"a";
  line.values[0] = 8;
  line.face_name = u"@Face";
  part_.AddVerticalText({10, 10, 0}, line);
  line.face_name.clear();
  line.values[1] = 3;
  line.values[2] = 90;
  part_.AddHorizontalText({10, 10, 0}, line);
  line.values[0] = 1e6;
  part_.AddHorizontalText({10, 10, 0}, line);
  part_.AddHorizontalText({0, 0, 0}, line);
  part_.horizontal_texts.items.back().anchor = AppendVertex(&part_, {kNan, 10, 0});
  const PictureNotes notes = Draw({2, 0, 100});
  EXPECT_EQ(notes.texts_no_size, 1u);
  EXPECT_EQ(notes.left_out, 1u);
  const auto drawn = Calls(Kind::kWholePolygons);
  ASSERT_EQ(drawn.size(), 2u);
  EXPECT_EQ(drawn[0].units, 8);  // 16 pixels high: 128 units
  EXPECT_EQ(drawn[0].pen.color, 0x0000FFu);
  EXPECT_EQ(drawn[0].brush.color, 0x00FF00u);
  ASSERT_EQ(dc_.created.size(), 2u);
  EXPECT_EQ(dc_.created[0].height, 128);
  EXPECT_EQ(dc_.created[0].face_name, u"ＭＳ ゴシック") << "horizontal first";
  EXPECT_EQ(dc_.created[0].width, 48);
  EXPECT_EQ(dc_.created[1].face_name, u"@Face");
  for (const auto& call : drawn) {  // centred on (20, 80) pixels, the pen's origin counted in
    for (const DevicePoint& p : call.points) {
      EXPECT_NEAR(p.x / 8, 20, 8) << p.x;
      EXPECT_NEAR(p.y / 8, 80, 8) << p.y;
    }
  }
  EXPECT_EQ(dc_.units(), 1);
}

TEST_F(DrawPartsTest, ContoursAreOneSetWithoutLimit) {
  GlyphContours contours;
  for (int i = 0; i < 600; ++i) {
    for (int k = 0; k < 25; ++k) contours.points.push_back({i * 1.0, k % 2 + 0.5});
    contours.counts.push_back(25);
  }
  contours.points[3].x = kNan;
  DrawContours(dc_, contours, {1, 0, 0}, {});
  ASSERT_EQ(dc_.calls.size(), 1u);
  EXPECT_EQ(dc_.calls[0].kind, Kind::kPolygons);
  EXPECT_EQ(dc_.calls[0].mode, FillMode::kAlternate);
  EXPECT_EQ(dc_.calls[0].counts.size(), 600u);
  EXPECT_EQ(dc_.calls[0].points.size(), 14999u);
  EXPECT_EQ(dc_.calls[0].counts[0], 24u);
  DrawContours(dc_, {}, {}, {});
}

// A text of a thousand lines in a small frame is still seen.
TEST_F(DrawPartsTest, ContoursThatShrinkToASpotKeepAnArea) {
  const struct {
    const char* what;
    double scale;
    P2 corner;
    size_t points;
    double width, height;
  } cases[] = {{"a spot", 0.001, {10, 20}, 4, 0.5, 0.5},
               {"wide and low", 0.1, {40, 2}, 4, 4, 0.5},
               {"narrow and high", 0.1, {2, 40}, 4, 0.5, 4},
               {"large enough", 1, {10, 20}, 4, 10, 20}};
  for (const auto& c : cases) {
    dc_.calls.clear();
    const double x = c.corner.x, y = c.corner.y;
    const GlyphContours contours = {.points = {{0, 0}, {x, 0}, {x, y}, {0, y}}, .counts = {4}};
    DrawContours(dc_, contours, {c.scale, 0, 0}, {.detail = 0.5});
    ASSERT_EQ(dc_.calls.size(), 1u) << c.what;
    const auto& points = dc_.calls[0].points;
    ASSERT_EQ(points.size(), c.points) << c.what;
    const auto [left, right] = std::minmax({points[0].x, points[1].x, points[2].x, points[3].x});
    const auto [top, bottom] = std::minmax({points[0].y, points[1].y, points[2].y, points[3].y});
    EXPECT_NEAR(right - left, c.width, 1e-9) << c.what;
    EXPECT_NEAR(bottom - top, c.height, 1e-9) << c.what;
  }
}

TEST_F(DrawPartsTest, BoxHoldsEverythingShownWithItsPens) {
  part_.pen.width = 4;
  part_.AddLine({0, 0, 0}, {10, 0, 0});
  part_.AddCircle({20, 20, 0}, 5, 0, {20, 20, 0}, {20, 20, 0});
  part_.vertices.Append({1000, 1000, 0});  // no element uses it
  part_.lines.items.push_back(
      {AppendVertex(&part_, {kNan, 0, 0}), AppendVertex(&part_, {0, kInf, 0})});
  part_.AddLine({1e200, 0, 0}, {0, 1, 0});
  const Extent3 box = PictureBox(model_, nullptr);
  EXPECT_EQ(box.min.x, -2);
  EXPECT_EQ(box.min.y, -2);
  EXPECT_EQ(box.max.x, 27);
  EXPECT_EQ(box.max.y, 27);
  const Extent3 none = PictureBox({}, nullptr);
  EXPECT_EQ(none.max.x - none.min.x, 0);
}

TEST(Hatch, NamesKindsAndUnit) {
  EXPECT_EQ(HatchName(0), "HS_HORIZONTAL");
  EXPECT_EQ(HatchName(5), "HS_DIAGCROSS");
  EXPECT_EQ(HatchName(42), "HS_DsSlSl__");
  EXPECT_EQ(HatchName(47), "PBH::HS_Net");
  EXPECT_EQ(HatchName(48), "HS_.....");
  EXPECT_EQ(HatchName(-1), "HS_.....");
  const struct {
    double side, unit;
  } cases[] = {{0, 1}, {64, 1}, {4096, 1}, {4097, 2}, {16384, 4}, {63, 0.5}, {16, 0.25}};
  for (const auto& c : cases)
    EXPECT_EQ(HatchUnit({{0, 0, 0}, {c.side, c.side / 2, 0}}), c.unit) << c.side;
  for (const double side : {1e-9, 1e9, 1e100}) {
    const double unit = HatchUnit({{0, 0, 0}, {side, side, 0}});
    EXPECT_GE(side / unit, 64) << side;
    EXPECT_LE(side / unit, 4096) << side;
  }
}

TEST(Hatch, FarBoxesAndWrongUnitsEnd) {
  const Extent3 boxes[] = {{{1e17, 1e17, 0}, {1e17 + 64, 1e17 + 64, 0}},
                           {{-1e100, 0, 0}, {1e100, 1, 0}},
                           {{5, 5, 0}, {5, 5, 0}}};
  for (const Extent3& box : boxes) {
    for (const int32_t hatch : {0, 1, 2, 3, 27}) {
      EXPECT_LE(HatchOver(hatch, box, 1).lines.size(), 200'002u) << hatch;
    }
  }
}

TEST_F(DrawPartsTest, PensOfNoLengthAreHairlines) {
  part_.AddLine({0, 0, 0}, {1, 1, 0});
  part_.pen.style = 77;
  const struct {
    double width, drawn;
  } cases[] = {{kNan, 0}, {kInf, 0}, {-3, 6}, {1e300, kMaxDevice}};
  for (const auto& c : cases) {
    part_.pen.width = part_.pen.unit_length = c.width;
    Draw({2, 0, 0});
    ASSERT_EQ(dc_.calls.size(), 1u);
    EXPECT_EQ(dc_.calls[0].pen, (PenData{PenStyle::kSolid, c.drawn, 0x0000FF, c.drawn}));
  }
}

TEST(Hatch, LinesAreCutByTheAlternateRule) {
  const std::vector<std::vector<P2>> loops = {{{0, 0}, {10, 0}, {10, 10}, {0, 10}},
                                              {{4, 4}, {6, 4}, {6, 6}, {4, 6}}};
  const auto pieces = ClipToLoops({{-5, 5}, {15, 5}}, loops);
  ASSERT_EQ(pieces.size(), 2u);
  EXPECT_DOUBLE_EQ(pieces[0].from.x, 0);
  EXPECT_DOUBLE_EQ(pieces[0].to.x, 4);
  EXPECT_DOUBLE_EQ(pieces[1].from.x, 6);
  EXPECT_DOUBLE_EQ(pieces[1].to.x, 10);
  EXPECT_TRUE(IsInside({2, 5}, loops));
  EXPECT_FALSE(IsInside({5, 5}, loops));
  EXPECT_FALSE(IsInside({-1, 5}, loops));
  const auto inner = ClipToLoops({{1, 2}, {3, 2}}, loops);
  ASSERT_EQ(inner.size(), 1u);
  EXPECT_DOUBLE_EQ(inner[0].from.x, 1);
  EXPECT_DOUBLE_EQ(inner[0].to.x, 3);
}

}  // namespace
}  // namespace kerno
