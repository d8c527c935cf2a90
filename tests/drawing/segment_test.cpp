#include "drawing/segment.h"

#include <gtest/gtest.h>

#include <cmath>

#include "drawing/measures.h"
#include "drawing/paths.h"

namespace kerno {
namespace {

using namespace test;

const Piece kPieces[] = {
    {{1, 2}, LineTo({4, 6})},
    {{1, 2}, ArcTo({4, 6}, 0.3)},
    {{1, 2}, ArcTo({4, 6}, -2.5)},
    {{1, 2}, QuadraticTo({9, 1}, {4, 6})},
    {{1, 2}, CubicTo({9, 1}, {-3, 5}, {4, 6})},
};

TEST(Segment, PartsLieOnTheWhole) {
  for (const Piece& piece : kPieces) {
    SCOPED_TRACE(static_cast<int>(piece.segment.kind));
    const Path whole = {piece.start, {piece.segment}, false};
    const Piece part = Between(piece, 0.7, 0.2);
    EXPECT_EQ(part.start, PointAt(piece, 0.7));
    EXPECT_EQ(part.segment.end, PointAt(piece, 0.2));
    EXPECT_LT(Farthest({part.start, {part.segment}, false}, whole), 1e-6);
    EXPECT_LT(Length(DirectionAt(part, 0) + DirectionAt(piece, 0.7)), 1e-12);
    const double step = 1e-6;
    const P2 slope = (PointAt(piece, 0.4 + step) - PointAt(piece, 0.4 - step)) * (0.5 / step);
    EXPECT_LT(Length(slope - VelocityAt(piece, 0.4)), 1e-6);
  }
}

// Against sums over many chords.
TEST(Measures, AgreeWithChords) {
  for (const Piece& piece : kPieces) {
    SCOPED_TRACE(static_cast<int>(piece.segment.kind));
    const Path path = {piece.start, {piece.segment}, true};
    const std::vector<P2> points = SamplesOf(path, 20000);
    double length = 0, twice_area = 0;
    Box2 box;
    Include(&box, points[0]);
    for (size_t i = 1; i < points.size(); ++i) {
      length += Length(points[i] - points[i - 1]);
      twice_area += Cross(points[i - 1] - piece.start, points[i] - piece.start);
      Include(&box, points[i]);
    }
    EXPECT_NEAR(LengthOf(path), length, 1e-6);
    EXPECT_NEAR(SignedAreaOf(path), twice_area / 2, 1e-6);
    const Box2 exact = BoxOf(path);
    EXPECT_LT(Length(exact.min - box.min) + Length(exact.max - box.max), 1e-6);
  }
  EXPECT_NEAR(SignedAreaOf(Circle({5, 5}, 2)), 4 * std::acos(-1.0), 1e-12);
  EXPECT_NEAR(LengthOf(Circle({5, 5}, 2, -1)), 4 * std::acos(-1.0), 1e-12);
}

}  // namespace
}  // namespace kerno
