#include "drawing/fit_arcs.h"

#include <gtest/gtest.h>

#include "drawing/flatten.h"
#include "drawing/paths.h"

namespace kerno {
namespace {

using namespace test;

// The degrees' cosine by which the path turns where its pieces meet, at its sharpest smooth joint:
// `corners` joints turn by more.
double RoughestSmoothJoint(const Path& path, size_t corners) {
  const std::vector<Piece> pieces = PiecesOf(path);
  std::vector<double> cosines;
  for (size_t i = path.closed ? 0 : 1; i < pieces.size(); ++i) {
    const Piece& before = pieces[i > 0 ? i - 1 : pieces.size() - 1];
    cosines.push_back(Dot(DirectionAt(before, 1), DirectionAt(pieces[i], 0)));
  }
  std::sort(cosines.begin(), cosines.end());
  return corners < cosines.size() ? cosines[corners] : 1;
}

struct AwkwardCurve {
  const char* name;
  Path path;
  size_t corners;
};

const AwkwardCurve kAwkwardCurves[] = {
    {"inflection", {{0, 0}, {CubicTo({5, 10}, {10, -10}, {15, 0})}, false}, 0},
    {"loop", {{0, 0}, {CubicTo({30, 20}, {-20, 20}, {10, 0})}, false}, 0},
    {"cusp", {{0, 0}, {CubicTo({20, 20}, {0, 20}, {20, 0})}, false}, 1},
    {"narrow bend", {{0, 0}, {CubicTo({20, 10}, {0, 20}, {20, 0})}, false}, 0},
    {"there and back", {{0, 0}, {QuadraticTo({10, 0}, {2, 0})}, false}, 1},
    {"control points on the ends", {{0, 0}, {CubicTo({0, 0}, {10, 5}, {10, 5})}, false}, 0},
    {"first control point on the start", {{0, 0}, {CubicTo({0, 0}, {0, 9}, {10, 5})}, false}, 0},
    {"repeated points",
     {{0, 0},
      {LineTo({0, 0}), QuadraticTo({5, 5}, {10, 0}), QuadraticTo({10, 0}, {10, 0}),
       QuadraticTo({15, -5}, {20, 0})},
      false},
     0},
    {"four quarters",
     {{5, 0},
      {CubicTo({5, 2.76}, {2.76, 5}, {0, 5}), CubicTo({-2.76, 5}, {-5, 2.76}, {-5, 0}),
       CubicTo({-5, -2.76}, {-2.76, -5}, {0, -5}), CubicTo({2.76, -5}, {5, -2.76}, {5, 0})},
      true},
     0},
    {"closed by one curve", {{0, 0}, {CubicTo({20, 20}, {-20, 20}, {0, 0})}, true}, 1},
    {"line into curve",
     {{0, 0}, {LineTo({10, 0}), QuadraticTo({15, 0}, {18, 6}), LineTo({21, 12})}, false},
     0},
};

TEST(FitArcs, KeepsWithinTheToleranceOfAwkwardCurves) {
  for (const AwkwardCurve& c : kAwkwardCurves) {
    for (const double tolerance : {0.001, 0.1, 50.0}) {
      SCOPED_TRACE(testing::Message() << c.name << " at " << tolerance);
      const Path arcs = FitArcs(c.path, tolerance);
      EXPECT_LE(Apart(c.path, arcs), std::min(tolerance, 1.0) + 1e-6);
      EXPECT_GT(RoughestSmoothJoint(arcs, c.corners), 0.99984);
      EXPECT_EQ(arcs.closed, c.path.closed);
      EXPECT_EQ(arcs.segments.back().end, c.path.closed ? arcs.start : c.path.segments.back().end);
      for (const Segment& s : arcs.segments) {
        EXPECT_TRUE(s.kind == SegmentKind::kLine || s.kind == SegmentKind::kArc);
        EXPECT_LE(std::fabs(s.bulge), 1);
      }
    }
  }
}

TEST(FitArcs, LeavesLinesAndArcsAlone) {
  const Path path = {{0, 0},
                     {LineTo({10, 0}), ArcTo({10, 4}, 3), QuadraticTo({5, 4.001}, {1, 4}),
                      LineTo({0, 4}), LineTo({0, 0})},
                     true};
  const Path arcs = FitArcs(path, 0.01);
  ASSERT_EQ(arcs.segments.size(), 5u);
  EXPECT_EQ(arcs.segments[1].bulge, 3);
  EXPECT_EQ(arcs.segments[2].kind, SegmentKind::kLine) << "nearly straight";
}

TEST(FitArcs, ReturnsNothingForAPoint) {
  EXPECT_TRUE(FitArcs({{1, 1}, {LineTo({1, 1}), CubicTo({1, 1}, {1, 1}, {1, 1})}, true}, 0.01)
                  .segments.empty());
}

TEST(FlattenPath, KeepsWithinTheToleranceOfAwkwardCurves) {
  for (const AwkwardCurve& c : kAwkwardCurves) {
    for (const double tolerance : {0.001, 0.1}) {
      SCOPED_TRACE(testing::Message() << c.name << " at " << tolerance);
      std::vector<P2> points;
      FlattenPath(c.path, tolerance, &points);
      Path chords = {points.at(0), {}, c.path.closed};
      for (size_t i = 1; i < points.size(); ++i) chords.segments.push_back(LineTo(points[i]));
      if (chords.closed) chords.segments.push_back(LineTo(points[0]));
      EXPECT_LE(Apart(c.path, chords), tolerance + 1e-6);
    }
  }
}

TEST(FlattenPath, CutsACircleIntoTheFewestChords) {
  std::vector<P2> points;
  FlattenPath(Circle({3, 4}, 10), 0.01, &points);
  // A chord of half the angle a strays by 10 (1 - cos a): pi / acos(1 - 0.001) = 70.2 in all.
  EXPECT_GE(points.size(), 71u);
  EXPECT_LE(points.size(), 72u);
}

}  // namespace
}  // namespace kerno
