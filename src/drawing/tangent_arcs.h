// Circular arcs by the directions at their ends, and how far a curve strays from an arc.
//
// Every result is made of +, -, *, / and square roots alone and is the same on every platform.
#pragma once

#include "drawing/segment.h"

namespace kerno {

// A point of a path and the path's direction there, of length 1.
struct Heading {
  P2 at, direction;
};

// The tangents of half the angles by which a chord's ends are left and reached against the chord:
// above 0 where the direction points to the left of it.
struct EndAngles {
  double leaving = 0, arriving = 0;
};

// False where an end points away from the other one, by a right angle or nearly so.
[[nodiscard]] bool AnglesBetween(const Heading& from, const Heading& to, EndAngles* angles);

// The bulge of the arc that comes nearest to both directions.
double EvenBulge(const EndAngles& angles);
// The tangent of half the angle by which that arc misses each of the directions.
double HalfMiss(const EndAngles& angles);

// Two arcs with one tangent where they meet, that leave and arrive in the directions given.
struct TangentArcs {
  double first_bulge = 0, second_bulge = 0;
  Heading joint;
};
TangentArcs ArcsBetween(const Heading& from, const Heading& to, const EndAngles& angles);

// At least the farthest distance between the curve and the arc from `from` to `to`, both ways; for
// curves that end where the arc does. Infinite where the curve runs against the arc. Near to
// `limit` or below, the answer is at most some hundredths too large.
double StrayFromArc(const Polynomial& curve, const P2& from, const P2& to, double bulge,
                    double limit);

}  // namespace kerno
