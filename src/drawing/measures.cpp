#include "drawing/measures.h"

#include <array>

#include "drawing/segment.h"

namespace kerno {
namespace {

// The angle of a tangent: the platforms' own functions differ in the last digit.
double AngleOfTangent(double tangent) {
  double halved = tangent, scale = 1;
  while (std::fabs(halved) > 0.1) {
    halved /= 1 + SquareRoot(1 + halved * halved);
    scale *= 2;
  }
  const double square = halved * halved;
  double sum = 0;
  for (int power = 17; power > 0; power -= 2) sum = 1.0 / power - square * sum;
  return scale * halved * sum;
}

double ChordToArc(const Piece& arc) {
  const double bulge = std::fabs(arc.segment.bulge);
  const double chord = Length(arc.segment.end - arc.start);
  return bulge > 0 ? chord * AngleOfTangent(bulge) * (1 + bulge * bulge) / bulge : chord;
}

// Gauss's rule of five points along part of a polynomial.
double RuleOfFive(const Polynomial& c) {
  struct Node {
    double at, weight;
  };
  constexpr std::array<Node, 5> kNodes = {{{0.5, 0.28444444444444444},
                                           {0.23076534494715845, 0.23931433524968324},
                                           {0.76923465505284155, 0.23931433524968324},
                                           {0.046910077030668004, 0.11846344252809454},
                                           {0.953089922969332, 0.11846344252809454}}};
  double sum = 0;
  for (const Node& node : kNodes) {
    sum += node.weight * Length(c.d1 + (c.d2 * 2 + c.d3 * (3 * node.at)) * node.at);
  }
  return sum;
}

double CurveLength(const Polynomial& c, double whole, int depth) {
  const Polynomial first = PartOf(c, 0, 0.5), second = PartOf(c, 0.5, 1);
  const double a = RuleOfFive(first), b = RuleOfFive(second);
  if (depth == 0 || std::fabs(a + b - whole) <= 1e-10 * whole) return a + b;
  return CurveLength(first, a, depth - 1) + CurveLength(second, b, depth - 1);
}

// Twice the area between the piece and its chord, and of the triangle of the chord with `origin`.
double TwiceArea(const Piece& piece, const P2& origin) {
  const Segment& s = piece.segment;
  const double triangle = Cross(piece.start - origin, s.end - origin);
  const P2 chord = s.end - piece.start;
  switch (s.kind) {
    case SegmentKind::kLine:
      return triangle;
    case SegmentKind::kArc: {
      const double bulge = s.bulge;
      if (std::fabs(bulge) < 1e-4) return triangle + Dot(chord, chord) * bulge * 2 / 3;
      const double radius = RadiusOf(piece);
      const double angle = 4 * AngleOfTangent(bulge);
      const double square = bulge * bulge;
      const double sine = 4 * bulge * (1 - square) / ((1 + square) * (1 + square));
      return triangle + radius * radius * (angle - sine);
    }
    case SegmentKind::kQuadratic:
      return triangle + Cross(s.first - piece.start, chord) * (2.0 / 3);
    case SegmentKind::kCubic: {
      const P2 first = s.first - piece.start, second = s.second - piece.start;
      return triangle +
             (Cross(first, second) + Cross(first, chord) + Cross(second, chord) * 2) * 0.3;
    }
  }
  return triangle;
}

void IncludeArc(const Piece& arc, Box2* box) {
  const P2 centre = CentreOf(arc);
  const P2 from = arc.start - centre, to = arc.segment.end - centre;
  // Within a quadrant of the circle, an arc stays in the box of its ends.
  if (std::fabs(arc.segment.bulge) < 0.5 && from.x * to.x > 0 && from.y * to.y > 0) return;
  const double radius = RadiusOf(arc);
  const P2 chord = arc.segment.end - arc.start;
  // The arc is the part of its circle on one side of the chord.
  const auto holds = [&](const P2& p) {
    return Cross(chord, p - arc.start) * arc.segment.bulge < 0;
  };
  for (const P2& p : {P2{centre.x + radius, centre.y}, P2{centre.x - radius, centre.y},
                      P2{centre.x, centre.y + radius}, P2{centre.x, centre.y - radius}}) {
    if (holds(p)) Include(box, p);
  }
}

void IncludeCurve(const Piece& piece, Box2* box) {
  const Polynomial c = PolynomialOf(piece);
  const auto include_roots = [&](double d1, double d2, double d3) {
    const double a = 3 * d3, b = 2 * d2;
    const double square = b * b - 4 * a * d1;
    if (square < 0) return;
    const double sum = -0.5 * (b + (b < 0 ? -SquareRoot(square) : SquareRoot(square)));
    for (const double t : {a != 0 ? sum / a : -1, sum != 0 ? d1 / sum : -1}) {
      if (t > 0 && t < 1) Include(box, PointAt(piece, t));
    }
  };
  include_roots(c.d1.x, c.d2.x, c.d3.x);
  include_roots(c.d1.y, c.d2.y, c.d3.y);
}

}  // namespace

double LengthOf(const Path& path) {
  double length = 0;
  for (const Piece& piece : PiecesOf(path)) {
    switch (piece.segment.kind) {
      case SegmentKind::kLine:
        length += Length(piece.segment.end - piece.start);
        break;
      case SegmentKind::kArc:
        length += ChordToArc(piece);
        break;
      default: {
        constexpr int kDeepest = 20;
        const Polynomial curve = PolynomialOf(piece);
        length += CurveLength(curve, RuleOfFive(curve), kDeepest);
      }
    }
  }
  return length;
}

double SignedAreaOf(const Path& path) {
  double twice = 0;
  for (const Piece& piece : PiecesOf(path)) twice += TwiceArea(piece, path.start);
  return twice * 0.5;
}

Box2 BoxOf(const Path& path) {
  Box2 box;
  P2 start = path.start;
  for (const Segment& segment : path.segments) {
    const Piece piece = {start, segment};
    start = segment.end;
    if (IsPoint(piece)) continue;
    Include(&box, piece.start);
    Include(&box, piece.segment.end);
    if (piece.segment.kind == SegmentKind::kArc && piece.segment.bulge != 0)
      IncludeArc(piece, &box);
    if (piece.segment.kind == SegmentKind::kQuadratic ||
        piece.segment.kind == SegmentKind::kCubic) {
      IncludeCurve(piece, &box);
    }
  }
  return box;
}

}  // namespace kerno
