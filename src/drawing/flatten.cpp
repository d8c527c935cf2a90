#include "drawing/flatten.h"

#include <algorithm>
#include <array>

namespace kerno {
namespace {

// The roots of a t^2 + b t + c strictly between 0 and 1.
struct Roots {
  std::array<double, 2> at;
  int count = 0;

  void Add(double t) {
    if (t > 0 && t < 1) at[static_cast<size_t>(count++)] = t;
  }
};

Roots RootsOf(double a, double b, double c) {
  Roots roots;
  const double square = b * b - 4 * a * c;
  if (square < 0) return roots;
  // The sum whose terms have one sign loses no digits.
  const double sum = -0.5 * (b + (b < 0 ? -SquareRoot(square) : SquareRoot(square)));
  if (a != 0) roots.Add(sum / a);
  if (sum != 0) roots.Add(c / sum);
  return roots;
}

// How far the curve reaches past either end of its chord, as a share of the chord.
double Overshoot(const Polynomial& curve, const P2& chord) {
  const double scale = 1 / Dot(chord, chord);
  const double p1 = Dot(chord, curve.d1) * scale;
  const double p2 = Dot(chord, curve.d2) * scale;
  const double p3 = Dot(chord, curve.d3) * scale;
  double most = 0;
  const Roots roots = RootsOf(3 * p3, 2 * p2, p1);
  for (int i = 0; i < roots.count; ++i) {
    const double t = roots.at[static_cast<size_t>(i)];
    const double along = t * (p1 + t * (p2 + t * p3));
    most = std::max({most, -along, along - 1});
  }
  return most;
}

void FlattenArc(const Piece& arc, double tolerance, std::vector<ChordEnd>* ends) {
  const double bulge = std::fabs(arc.segment.bulge);
  const double radius = RadiusOf(arc);
  // Chords of an arc of quarter tangent q stay within r 2 q^2 / (1 + q^2). At most a quarter of a
  // circle each, so that the shape survives a tolerance that is larger than it.
  const double coarsest = 0.41421356237309503;
  const double quarter = 2 * radius > tolerance
                             ? std::min(coarsest, SquareRoot(tolerance / (2 * radius - tolerance)))
                             : coarsest;
  double gone = 0;
  for (;;) {
    // The tangent of a sum of angles; at a whole quarter of the circle or past it, the end is
    // there.
    const double below = 1 - gone * quarter;
    if (below <= 0) break;
    gone = (gone + quarter) / below;
    if (!(gone < bulge * (1 - 1e-12))) break;
    const double t = gone / bulge;
    ends->push_back({t, PointAt(arc, t)});
  }
  ends->push_back({1, arc.segment.end});
}

}  // namespace

double DistanceFromChord(const Polynomial& curve) {
  const P2 chord = curve.d1 + curve.d2 + curve.d3;
  const double length = Length(chord);
  if (!(length > 0)) return Length(curve.d1) + Length(curve.d2) + Length(curve.d3);
  // Across the chord the curve runs as t (1 - t) (x1 - x3 t).
  const double x1 = Cross(chord, curve.d1), x3 = Cross(chord, curve.d3);
  double most = 0;
  const Roots roots = RootsOf(3 * x3, -2 * (x1 + x3), x1);
  for (int i = 0; i < roots.count; ++i) {
    const double t = roots.at[static_cast<size_t>(i)];
    most = std::max(most, std::fabs(t * (1 - t) * (x1 - x3 * t)));
  }
  const double across = most / length;
  const double past = Overshoot(curve, chord) * length;
  return past > 0 ? SquareRoot(across * across + past * past) : across;
}

void FlattenPiece(const Piece& piece, double tolerance, std::vector<ChordEnd>* ends) {
  if (piece.segment.kind == SegmentKind::kArc) return FlattenArc(piece, tolerance, ends);
  if (piece.segment.kind == SegmentKind::kLine) {
    ends->push_back({1, piece.segment.end});
    return;
  }
  const Polynomial curve = PolynomialOf(piece);
  const double least_step = 1e-6;
  double from = 0, step = 0.25;
  while (from < 1) {
    // The distance grows about with the square of the step: a few guesses come close to the longest
    // step that fits.
    const double rest = 1 - from;
    double good = 0, bad = rest * 2;
    step = std::min(step, rest);
    for (int guess = 0; guess < 12; ++guess) {
      const double distance = DistanceFromChord(PartOf(curve, from, from + step));
      (distance <= tolerance ? good : bad) = step;
      if (good == rest || (good > 0 && good > bad * 0.98)) break;
      if (good > 0 && guess >= 5) break;
      const double factor = distance > 0 ? SquareRoot(tolerance / distance) : 4;
      step = std::min(rest, step * std::clamp(factor * 0.995, 0.1, 4.0));
      if (step <= good || step >= bad) step = std::min(rest, 0.5 * (good + bad));
      if (step < least_step) break;
    }
    step = good > 0 ? good : std::min(rest, least_step);
    from = step >= rest * (1 - 1e-9) ? 1 : from + step;
    ends->push_back({from, PointAt(piece, from)});
  }
}

void FlattenPath(const Path& path, double tolerance, std::vector<P2>* points) {
  points->clear();
  std::vector<ChordEnd> ends;
  for (const Piece& piece : PiecesOf(path)) {
    if (points->empty()) points->push_back(piece.start);
    ends.clear();
    FlattenPiece(piece, tolerance, &ends);
    for (const ChordEnd& end : ends) {
      if (!(end.point == points->back())) points->push_back(end.point);
    }
  }
  if (path.closed && points->size() > 1 && points->back() == points->front()) points->pop_back();
}

}  // namespace kerno
