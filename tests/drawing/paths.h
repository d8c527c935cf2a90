// Paths in few words, and how far apart two of them are by dense samples of both.
#pragma once

#include <algorithm>
#include <vector>

#include "drawing/segment.h"

namespace kerno::test {

inline Segment LineTo(const P2& end) {
  Segment s;
  s.end = end;
  return s;
}
inline Segment ArcTo(const P2& end, double bulge) {
  Segment s = LineTo(end);
  s.kind = SegmentKind::kArc;
  s.bulge = bulge;
  return s;
}
inline Segment QuadraticTo(const P2& control, const P2& end) {
  Segment s = LineTo(end);
  s.kind = SegmentKind::kQuadratic;
  s.first = control;
  return s;
}
inline Segment CubicTo(const P2& first, const P2& second, const P2& end) {
  Segment s = QuadraticTo(first, end);
  s.kind = SegmentKind::kCubic;
  s.second = second;
  return s;
}

// Two halves of a circle; counter-clockwise with the bulge 1.
inline Path Circle(const P2& centre, double radius, double bulge = 1) {
  const P2 right = centre + P2{radius, 0}, left = centre - P2{radius, 0};
  return {right, {ArcTo(left, bulge), ArcTo(right, bulge)}, true};
}
inline Path Rectangle(const P2& min, const P2& max) {
  return {min, {LineTo({max.x, min.y}), LineTo(max), LineTo({min.x, max.y}), LineTo(min)}, true};
}

inline std::vector<P2> SamplesOf(const Path& path, int count) {
  std::vector<P2> samples = {path.start};
  for (const Piece& piece : PiecesOf(path)) {
    for (int i = 1; i <= count; ++i) samples.push_back(PointAt(piece, i * (1.0 / count)));
  }
  return samples;
}

inline double DistanceTo(const Piece& piece, const P2& p) {
  constexpr int kSteps = 16;
  const auto distance = [&](double t) { return Length(PointAt(piece, t) - p); };
  double nearest = HUGE_VAL;
  for (int i = 0; i <= kSteps; ++i) {
    double best = i * (1.0 / kSteps), least = distance(best);
    double step = 1.0 / kSteps;
    for (int halving = 0; halving < 24; ++halving, step *= 0.5) {
      for (const double t : {std::max(0.0, best - step), std::min(1.0, best + step)}) {
        if (distance(t) < least) best = t, least = distance(t);
      }
    }
    nearest = std::min(nearest, least);
  }
  return nearest;
}

// The farthest of one path's points from the other path.
inline double Farthest(const Path& from, const Path& to) {
  const std::vector<Piece> pieces = PiecesOf(to);
  double farthest = 0;
  for (const P2& p : SamplesOf(from, 8)) {
    double nearest = HUGE_VAL;
    for (const Piece& piece : pieces) nearest = std::min(nearest, DistanceTo(piece, p));
    farthest = std::max(farthest, nearest);
  }
  return farthest;
}
inline double Apart(const Path& a, const Path& b) {
  return std::max(Farthest(a, b), Farthest(b, a));
}

}  // namespace kerno::test
