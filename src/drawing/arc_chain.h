// The fewest arcs along one smooth stretch of a path.
#pragma once

#include <optional>
#include <vector>

#include "drawing/segment.h"

namespace kerno {

// A point of the stretch and the direction of the path there, of length 1.
struct CurvePoint {
  P2 at, direction;
  bool may_join = true;  // arcs may meet here; they do at the first and last point
};

// How arcs may leave the first point or reach the last one: at most `slope` off the direction
// there, as the tangent of the angle between them, up to kAnySlope.
constexpr double kAnySlope =
    1.7;  // of an end at a corner, where the arc may turn within the tolerance
struct EndSlopes {
  double first, last;
};

// Lines and arcs from the first point to the last, each between two of the points, turning by at
// most the angle of tangent `joint_slope` where they meet, and no farther than `tolerance` from the
// path, which itself strays by at most `between` from the chords between neighbouring points. As
// few as such arcs can be, or nearly so. Nothing when none were found.
std::optional<std::vector<Segment>> ChainOfArcs(const std::vector<CurvePoint>& points,
                                                double tolerance, double between,
                                                double joint_slope, const EndSlopes& ends);

}  // namespace kerno
