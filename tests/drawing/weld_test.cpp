#include "drawing/weld.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "drawing/check_paths.h"
#include "drawing/cutting_order.h"
#include "drawing/measures.h"
#include "drawing/offset.h"
#include "drawing/paths.h"

namespace kerno {
namespace {

using namespace test;

constexpr double kTolerance = 0.01;
constexpr double kPi = std::numbers::pi;

double AreaOf(const WeldResult& result) {
  double area = 0;
  for (const WeldedPath& p : result.paths) area += SignedAreaOf(p.path);
  return area;
}

// Areas are those of the shapes' own formulas.
TEST(Weld, FillsWhatTheNonZeroRuleFills) {
  const Path square = Rectangle({0, 0}, {10, 10});
  const Path bow = {
      {0, 0}, {LineTo({10, 10}), LineTo({10, 0}), LineTo({0, 10}), LineTo({0, 0})}, true};
  const Path nothing = {{2, 2}, {LineTo({8, 2}), LineTo({8, 2}), LineTo({2, 2})}, true};
  const Path wrong = {{0, 0}, {LineTo({NAN, 5}), LineTo({0, 0})}, true};
  const Path inner = Rectangle({2, 2}, {4, 4});
  const struct {
    const char* name;
    std::vector<Path> paths;
    size_t outlines;
    double area;
    size_t vanished;
  } kCases[] = {
      {"one", {square}, 1, 100, 0},
      {"the wrong way round", {Reversed(square)}, 1, 100, 0},
      {"twice", {square, square}, 1, 100, 1},
      {"both ways", {square, Reversed(square)}, 0, 0, 2},
      {"with a counter", {square, Reversed(inner)}, 2, 96, 0},
      {"all the wrong way round", {Reversed(square), inner}, 2, 96, 0},
      {"one inside another", {square, inner}, 1, 100, 1},
      {"an overlap inside another", {square, inner, Rectangle({3, 3}, {6, 6})}, 1, 100, 2},
      {"an overlap around a counter",
       {square, Rectangle({5, 0}, {15, 10}), Reversed(Rectangle({6, 4}, {8, 6}))},
       1,
       150,
       1},
      {"crossing counters",
       {square, Reversed(inner), Reversed(Rectangle({3, 3}, {6, 6}))},
       3,
       100 - (4 + 9 - 2),
       0},
      {"crossing itself", {bow}, 2, 50, 0},
      {"side by side", {square, Rectangle({10, 0}, {20, 10})}, 1, 200, 0},
      {"at a corner", {square, Rectangle({10, 10}, {12, 12})}, 2, 104, 0},
      {"without area", {nothing, square}, 1, 100, 1},
      {"not a number", {wrong, square}, 1, 100, 1},
      {"circles", {Circle({0, 0}, 5), Circle({20, 0}, 3, -1)}, 2, 34 * kPi, 0},
      {"circles that cross",
       {Circle({0, 0}, 5), Circle({5, 0}, 5)},
       1,
       50 * kPi - 50 * kPi / 3 + 25 * std::sqrt(3.0) / 2,
       0},
      {"opposite overlaps", {square, Reversed(Rectangle({5, 0}, {15, 10}))}, 2, 100, 0},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.name);
    const WeldResult result = Weld(c.paths, kTolerance);
    EXPECT_EQ(result.paths.size(), c.outlines);
    EXPECT_NEAR(AreaOf(result), c.area, 1e-4);
    EXPECT_EQ(static_cast<size_t>(std::ranges::count(result.vanished, true)), c.vanished);
    std::vector<Path> outlines;
    for (const WeldedPath& p : result.paths) outlines.push_back(p.path);
    EXPECT_EQ(CheckPaths(outlines, kTolerance).crossing, 0u);
    EXPECT_EQ(CheckPaths(outlines, kTolerance).self_crossing, 0u);
  }
}

TEST(Weld, KeepsCurvesBetweenCrossings) {
  const Path circle = Circle({0, 0}, 5), apart = Circle({50, 0}, 5, -1);
  const WeldResult result =
      Weld(std::vector<Path>{circle, Rectangle({0, -1}, {9, 1}), apart}, kTolerance);
  ASSERT_EQ(result.paths.size(), 2u);
  EXPECT_EQ(result.paths[1].input, 2u);
  EXPECT_TRUE(result.paths[1].reversed);
  EXPECT_EQ(result.paths[1].path.segments[0].bulge, 1);
  EXPECT_EQ(result.paths[0].input, kNewOutline);
  EXPECT_LE(result.paths[0].path.segments.size(), 6u);
  for (const Piece& piece : PiecesOf(result.paths[0].path)) {
    if (piece.segment.kind == SegmentKind::kArc) {
      EXPECT_NEAR(RadiusOf(piece), 5, 1e-9);
      EXPECT_NEAR(Length(piece.start), 5, 1e-9);
    }
  }
}

TEST(Offset, CountsWhatVanishes) {
  const std::vector<Path> paths = {Rectangle({0, 0}, {20, 20}), Reversed(Rectangle({4, 4}, {8, 8})),
                                   Reversed(Circle({14, 14}, 3)), Rectangle({30, 0}, {31, 20})};
  const struct {
    double distance;
    size_t outlines, vanished;
    double area;
  } kCases[] = {
      {0, 4, 0, 400 - 16 - 9 * kPi + 20},
      {-0.25, 4, 0, 19.5 * 19.5 - (16 + 4 + kPi / 16) - 3.25 * 3.25 * kPi + 0.5 * 19.5},
      {-0.75, 3, 1, 18.5 * 18.5 - (16 + 12 + kPi * 9 / 16) - 3.75 * 3.75 * kPi},
      {2.5, 3, 1, 400 + 200 + 6.25 * kPi - kPi / 4 + 20 + 105 + 6.25 * kPi},
      {4, 2, 2, 400 + 320 + 16 * kPi + 20 + 168 + 16 * kPi},
      {-12, 0, 4, 0},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.distance);
    const OffsetResult result = Offset(paths, c.distance, kTolerance);
    EXPECT_EQ(result.paths.size(), c.outlines);
    EXPECT_EQ(result.vanished, c.vanished);
    double area = 0;
    for (const Path& path : result.paths) area += SignedAreaOf(path);
    EXPECT_NEAR(area, c.area, 1e-3);
  }
}

TEST(CheckPaths, CountsWhatACutterStumblesOver) {
  const Path square = Rectangle({0, 0}, {10, 10});
  const Path bow = {
      {0, 20}, {LineTo({10, 30}), LineTo({10, 20}), LineTo({0, 30}), LineTo({0, 20})}, true};
  const Path spike = {
      {0, 40}, {LineTo({9, 40}), LineTo({4, 40}), LineTo({4, 45}), LineTo({0, 40})}, true};
  Path open = Rectangle({30, 0}, {40, 10});
  open.segments.pop_back();
  open.closed = false;
  const PathFaults faults =
      CheckPaths(std::vector<Path>{square, Circle({10, 5}, 2), Rectangle({0, 10}, {5, 12}),
                                   Circle({5, 5}, 1), bow, spike, open},
                 kTolerance);
  EXPECT_EQ(faults.open, 1u);
  EXPECT_EQ(faults.crossing, 1u);
  EXPECT_EQ(faults.touching, 1u);
  EXPECT_EQ(faults.self_crossing, 1u);
  EXPECT_EQ(faults.self_touching, 1u);
}

TEST(OrderForCutting, GoesInsideFirstAndTheShortWay) {
  // Two letters of which the first has two counters, one with an island; all the wrong way round or
  // not.
  const std::vector<Path> paths = {
      Rectangle({0, 0}, {10, 20}),         Reversed(Rectangle({2, 12}, {8, 18})),
      Reversed(Rectangle({2, 2}, {8, 8})), Rectangle({4, 4}, {6, 6}),
      Reversed(Circle({20, 5}, 5)),        Circle({20, 5}, 2),
  };
  const auto steps = OrderForCutting(paths, kTolerance, CutOrder::kInsideFirst);
  std::vector<size_t> order, depths;
  P2 tool = {0, 0};
  for (const CutStep& step : steps) {
    order.push_back(step.path);
    depths.push_back(step.depth);
    const Path path = PathOf(paths[step.path], step);
    EXPECT_EQ(SignedAreaOf(path) < 0, step.depth % 2 == 1) << step.path;
    EXPECT_EQ(path.start, path.segments.back().end);
    for (const Segment& s : path.segments) {
      EXPECT_LE(Length(path.start - tool), Length(s.end - tool)) << step.path;
    }
    tool = path.start;
  }
  EXPECT_EQ(order, (std::vector<size_t>{3, 2, 1, 0, 5, 4}));
  EXPECT_EQ(depths, (std::vector<size_t>{2, 1, 1, 0, 1, 0}));
  order.clear();
  for (const CutStep& step : OrderForCutting(paths, kTolerance, CutOrder::kText)) {
    order.push_back(step.path);
  }
  EXPECT_EQ(order, (std::vector<size_t>{0, 1, 2, 3, 4, 5}));
}

}  // namespace
}  // namespace kerno
