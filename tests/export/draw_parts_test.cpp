#include "export/draw_parts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "export/hatch.h"
#include "support/fake_settings.h"
#include "support/recording_drawing_context.h"

namespace kerno {
namespace {

using Kind = RecordingDrawingContext::Kind;
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

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

TEST_F(DrawPartsTest, DetailDropsNearPointsAndKeepsTheLastAndTheTinyVisible) {
  for (int i = 0; i < 100; ++i) part_.AddLine({i * 0.1, 0, 0}, {(i + 1) * 0.1, 0, 0});
  model_.parts.emplace_back().AddLine({20, 0, 0}, {20.1, 0, 0});
  Draw(FlippedY(1, {}), 0.5);
  const auto lines = Calls(Kind::kPolyline);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_LT(lines[0].points.size(), 25u);
  EXPECT_GT(lines[0].points.size(), 15u);
  EXPECT_EQ(lines[0].points.back().x, 10);
  EXPECT_EQ(PointsOf(lines[1]), (Points{{20, 0}, {20.5, 0}}));
  Draw();
  EXPECT_EQ(Calls(Kind::kPolyline)[0].points.size(), 101u);
}

TEST_F(DrawPartsTest, HatchesStayInsideTheirFace) {
  part_.AddFace(std::vector<P3>{{0, 0}, {100, 0}, {0, 100}}, 0);
  part_.brush.style = 2;
  for (int32_t hatch = -1; hatch <= HatchCount(); ++hatch) {
    part_.brush.hatch = hatch;
    Draw();
    const auto lines = Calls(Kind::kPolyline);
    const HatchKind kind = HatchKindOf(hatch);
    EXPECT_EQ(Calls(Kind::kPolygons).size(), kind == HatchKind::kSolid ? 1u : 0u) << hatch;
    EXPECT_EQ(lines.size() + Calls(Kind::kCircle).size() > 0, kind == HatchKind::kFigures) << hatch;
    for (const auto& line : lines) {
      EXPECT_EQ(line.pen, (PenData{.color = 0x00FF00}));
      for (const DevicePoint& p : line.points) {
        EXPECT_TRUE(p.x >= -1e-9 && p.y <= 1e-9 && p.x - p.y <= 100 + 1e-9) << hatch;
      }
    }
  }
}

// The limits of points go by the text's own height, and the message is as large as any text.
TEST_F(DrawPartsTest, LongTextsAreDrawnAndTooLongOnesAskReadably) {
  const auto draw = [&](size_t length, double height, BitmapSurface* surface) {
    TextLine line;
    while (line.text.size() < length) line.text += u"Sphinx of black quartz, judge my vow ";
    line.text.resize(length);
    line.height = height;
    line.face_name = u"DejaVu Sans";
    part_.horizontal_texts.items.clear();
    part_.AddHorizontalText({0, 0, 0}, line);
    return DrawParts(surface->Context(), model_, FlippedY(1, {}), {}).texts_too_large;
  };
  const auto message = CreateBitmapSurface(200, 20, 0xFFFFFF);
  message->Context().TextOut(0, 0, u"文字列を分割して指定してください");
  const auto surface = CreateBitmapSurface(200, 20, 0xFFFFFF);
  EXPECT_EQ(draw(260, 10, surface.get()), 0u);
  EXPECT_EQ(draw(260, 1000, surface.get()), 1u);
  const auto speck = CreateBitmapSurface(200, 20, 0xFFFFFF);
  EXPECT_EQ(draw(2600, 10, speck.get()), 1u);
  EXPECT_TRUE(std::ranges::equal(speck->Pixels(), message->Pixels()));
  part_.horizontal_texts.items[0].height = 1e6;
  EXPECT_EQ(Draw().texts_no_size, 1u);
}

TEST_F(DrawPartsTest, ContoursAreOneSetWithoutLimit) {
  GlyphContours contours;
  for (int i = 0; i < 15000; ++i) contours.points.push_back({i / 25 * 1.0, i % 2 + 0.5});
  contours.counts.assign(600, 25);
  contours.points[3].x = kNan;
  DrawContours(dc_, TextContours(contours), FlippedY(1, {}), {});
  ASSERT_EQ(dc_.calls.size(), 1u);
  EXPECT_EQ(dc_.calls[0].kind, Kind::kPolygons);
  EXPECT_EQ(dc_.calls[0].mode, FillMode::kAlternate);
  EXPECT_EQ(dc_.calls[0].counts.size(), 600u);
  EXPECT_EQ(dc_.calls[0].counts[0], 24u);
  EXPECT_EQ(dc_.calls[0].points.size(), 14999u);
}

TEST_F(DrawPartsTest, ContoursOfAGlyphAreMeasuredAndThinnedOutOnce) {
  CachedGlyph glyph;
  for (int i = 0; i < 100; ++i) {
    const double angle = i * 2 * std::numbers::pi / 100;
    glyph.contours.points.push_back({50 * std::cos(angle), 30 * std::sin(angle)});
  }
  glyph.contours.counts = {100};
  TextContours contours(GlyphRun{{&glyph, {0, 0}, 0}, {&glyph, {99, 7}, 1}});
  contours.Apply(FlippedY(1.1, {3, 0.1}));
  Extent3 box = kEmptyExtent;
  contours.EachPoint([&](const P2& p) { Include(&box, {p.x, p.y, 0}); });
  EXPECT_EQ(ContoursBox(contours).min, box.min);
  EXPECT_EQ(ContoursBox(contours).max, box.max);

  const TextContours reduced = contours.Reduced(10);
  EXPECT_LT(reduced.point_count(), contours.point_count() / 3);
  std::vector<P2> room, reduced_room;
  for (size_t i = 0; i < 2; ++i) {
    const auto kept = reduced.Contour(i, &reduced_room);
    for (const P2& p : contours.Contour(i, &room)) {
      EXPECT_TRUE(std::ranges::any_of(
          kept,
          [&](const P2& k) { return std::fabs(k.x - p.x) <= 11 && std::fabs(k.y - p.y) <= 11; }))
          << "none near " << p.x << ", " << p.y;
    }
  }
}

// A text of a thousand lines in a small frame is still seen.
TEST_F(DrawPartsTest, ContoursThatShrinkToASpotKeepAnArea) {
  const struct {
    double scale;
    P2 corner;
    double width, height;
  } cases[] = {{0.001, {10, 20}, 0.5, 0.5}, {0.1, {40, 2}, 4, 0.5}, {1, {10, 20}, 10, 20}};
  for (const auto& c : cases) {
    const auto [x, y] = c.corner;
    dc_.calls.clear();
    const TextContours contours({.points = {{0, 0}, {x, 0}, {x, y}, {0, y}}, .counts = {4}});
    DrawContours(dc_, contours, FlippedY(c.scale, {}), {.detail = 0.5});
    ASSERT_EQ(dc_.calls.size(), 1u);
    Extent3 box = {{1e9, 1e9}, {-1e9, -1e9}};
    for (const DevicePoint& p : dc_.calls[0].points) Include(&box, {p.x, p.y});
    EXPECT_NEAR(box.max.x - box.min.x, c.width, 1e-9) << c.scale;
    EXPECT_NEAR(box.max.y - box.min.y, c.height, 1e-9) << c.scale;
  }
}

TEST_F(DrawPartsTest, BoxHoldsEverythingShownWithItsPens) {
  part_.pen.width = 4;
  part_.AddLine({0, 0, 0}, {10, 0, 0});
  part_.AddCircle({20, 20, 0}, 5, 0, {20, 20, 0}, {20, 20, 0});
  part_.vertices.Append({1000, 1000, 0});  // no element uses it
  part_.AddLine({1e200, 0, 0}, {0, 500, 0});
  const Extent3 box = PictureBox(model_, nullptr);
  EXPECT_EQ(box.min, (P3{-2, -2}));
  EXPECT_EQ(box.max, (P3{27, 27}));
  EXPECT_EQ(PictureBox({}, nullptr).max, P3{});
}

TEST(Hatch, Unit) {
  const std::pair<double, double> units[] = {{0, 1},     {64, 1},   {4096, 1}, {4097, 2},
                                             {16384, 4}, {63, 0.5}, {16, 0.25}};
  for (const auto& [side, unit] : units) EXPECT_EQ(HatchUnit({{}, {side, side / 2, 0}}), unit);
  for (const double side : {1e-9, 1e100}) {
    const double lines = side / HatchUnit({{}, {side, side, 0}});
    EXPECT_TRUE(64 <= lines && lines <= 4096) << side;
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
  const std::pair<double, double> cases[] = {{kNan, 0}, {kInf, 0}, {-3, 6}, {1e300, kMaxDevice}};
  for (const auto& [width, drawn] : cases) {
    part_.pen.width = part_.pen.unit_length = width;
    Draw(FlippedY(2, {0, 0}));
    ASSERT_EQ(dc_.calls.size(), 1u);
    EXPECT_EQ(dc_.calls[0].pen, (PenData{PenStyle::kSolid, drawn, 0x0000FF, drawn}));
  }
}

TEST(Hatch, LinesAreCutByTheAlternateRule) {
  const std::vector<std::vector<P2>> loops = {{{0, 0}, {10, 0}, {10, 10}, {0, 10}},
                                              {{4, 4}, {6, 4}, {6, 6}, {4, 6}}};
  const auto pieces = ClipToLoops({{-5, 5}, {15, 5}}, loops);
  ASSERT_EQ(pieces.size(), 2u);
  EXPECT_DOUBLE_EQ(pieces[0].to.x, 4);
  EXPECT_DOUBLE_EQ(pieces[1].from.x, 6);
  EXPECT_TRUE(ClipToLoops({{4, 5}, {6, 5}}, loops).empty());
  EXPECT_TRUE(IsInside({2, 5}, loops));
  EXPECT_FALSE(IsInside({5, 5}, loops) || IsInside({-1, 5}, loops));
}

}  // namespace
}  // namespace kerno
