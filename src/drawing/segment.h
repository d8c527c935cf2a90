// Points, tangents and parts of one segment of a path. A segment's parameter runs from 0 at its
// start to 1 at its end; along an arc the tangent of a quarter of the angle gone grows evenly with
// it.
//
// Every result is made of +, -, *, / and square roots alone and is the same on every platform.
#pragma once

#include "drawing/path.h"
#include "drawing/vector.h"

namespace kerno {

// A segment with the point where it begins.
struct Piece {
  P2 start;
  Segment segment;
};

// A line, quadratic or cubic as a polynomial: point(t) = at + t (d1 + t (d2 + t d3)).
struct Polynomial {
  P2 at, d1, d2, d3;
};

// Of any piece but an arc.
Polynomial PolynomialOf(const Piece& piece);
// The part from `from` to `to`, with a parameter that runs from 0 to 1 along it again.
Polynomial PartOf(const Polynomial& curve, double from, double to);

inline P2 PointAt(const Polynomial& c, double t) {
  return c.at + (c.d1 + (c.d2 + c.d3 * t) * t) * t;
}

// 0 and 1 give the ends themselves.
P2 PointAt(const Piece& piece, double t);
// The derivative by the parameter.
P2 VelocityAt(const Piece& piece, double t);
// The unit tangent. Where the derivative vanishes at an end, the direction in which the curve
// leaves or reaches it; zero for a piece that is one point.
P2 DirectionAt(const Piece& piece, double t);

// The same curve between two parameters; backwards when `from` is the larger. The whole piece comes
// back exactly.
Piece Between(const Piece& piece, double from, double to);

// A line or curve as a cubic; an arc comes back as it is.
Segment AsCubic(const Piece& piece);

// Appends cubics along an arc, no farther than `tolerance` (above 0) from it.
void AppendCubics(const Piece& arc, double tolerance, std::vector<Segment>* cubics);

// The whole piece backwards.
Piece Reversed(const Piece& piece);
// The same line the other way round; a closed path keeps its start.
Path Reversed(const Path& path);

// All pieces of a path, those of no length left out.
std::vector<Piece> PiecesOf(const Path& path);

// Whether the piece is a single point: all of its points are the same.
bool IsPoint(const Piece& piece);

// The radius of an arc, without a sign; infinite when it is straight.
double RadiusOf(const Piece& arc);
P2 CentreOf(const Piece& arc);

}  // namespace kerno
