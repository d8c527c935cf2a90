#include "drawing/segment.h"

#include <algorithm>

namespace kerno {
namespace {

P2 ArcPointAt(const Piece& piece, double t) {
  const double bulge = piece.segment.bulge;
  const double gone = t * bulge;
  const P2 chord = piece.segment.end - piece.start;
  const double share = t * (1 + bulge * bulge) / (1 + gone * gone);
  const double half_turn = (gone - bulge) / (1 + gone * bulge);
  return piece.start + TurnedByHalf(chord, half_turn) * share;
}

P2 ArcDirectionAt(const Piece& piece, double t) {
  const double bulge = piece.segment.bulge;
  const double gone = t * bulge;
  const P2 chord = piece.segment.end - piece.start;
  // Two turns, each of which stays well away from half a circle for arcs below a whole one.
  return TurnedByHalf(TurnedByHalf(TurnedByHalf(chord, -bulge), gone), gone);
}

}  // namespace

Polynomial PolynomialOf(const Piece& piece) {
  const P2& a = piece.start;
  const Segment& s = piece.segment;
  switch (s.kind) {
    case SegmentKind::kQuadratic:
      return {a, (s.first - a) * 2, a - s.first * 2 + s.end, {}};
    case SegmentKind::kCubic:
      return {a, (s.first - a) * 3, (a - s.first * 2 + s.second) * 3,
              s.end - a + (s.first - s.second) * 3};
    default:
      return {a, s.end - a, {}, {}};
  }
}

Polynomial PartOf(const Polynomial& c, double from, double to) {
  const double h = to - from;
  return {c.at + (c.d1 + (c.d2 + c.d3 * from) * from) * from,
          (c.d1 + (c.d2 * 2 + c.d3 * (3 * from)) * from) * h, (c.d2 + c.d3 * (3 * from)) * (h * h),
          c.d3 * (h * h * h)};
}

P2 PointAt(const Piece& piece, double t) {
  if (t == 0) return piece.start;
  if (t == 1) return piece.segment.end;
  if (piece.segment.kind == SegmentKind::kArc) return ArcPointAt(piece, t);
  return PointAt(PolynomialOf(piece), t);
}

P2 VelocityAt(const Piece& piece, double t) {
  if (piece.segment.kind == SegmentKind::kArc) {
    const double bulge = piece.segment.bulge;
    const double gone = t * bulge;
    return ArcDirectionAt(piece, t) * ((1 + bulge * bulge) / (1 + gone * gone));
  }
  const Polynomial c = PolynomialOf(piece);
  return c.d1 + (c.d2 * 2 + c.d3 * (3 * t)) * t;
}

P2 DirectionAt(const Piece& piece, double t) {
  if (piece.segment.kind == SegmentKind::kArc) return Unit(ArcDirectionAt(piece, t));
  const Polynomial c = PolynomialOf(piece);
  const P2 velocity = c.d1 + (c.d2 * 2 + c.d3 * (3 * t)) * t;
  // Squares, as nearly always the velocity is all that is asked for.
  const double size = Dot(c.d1, c.d1) + Dot(c.d2, c.d2) + Dot(c.d3, c.d3);
  if (Dot(velocity, velocity) > size * 1e-17) return Unit(velocity);
  const double scale = SquareRoot(size);
  // The second derivative leads away from where the first one vanishes, forwards or backwards.
  const P2 bend = c.d2 * 2 + c.d3 * (6 * t);
  if (Length(bend) > scale * 1e-9) return Unit(t > 0.5 ? bend * -1.0 : bend);
  return Unit(c.d3);
}

Segment AsCubic(const Piece& piece) {
  Segment segment = piece.segment;
  const P2& from = piece.start;
  const P2& to = segment.end;
  if (segment.kind == SegmentKind::kLine) {
    segment.first = from + (to - from) * (1.0 / 3);
    segment.second = from + (to - from) * (2.0 / 3);
  } else if (segment.kind == SegmentKind::kQuadratic) {
    segment.second = to + (segment.first - to) * (2.0 / 3);
    segment.first = from + (segment.first - from) * (2.0 / 3);
  }
  if (segment.kind != SegmentKind::kArc) segment.kind = SegmentKind::kCubic;
  return segment;
}

void AppendCubics(const Piece& arc, double tolerance, std::vector<Segment>* cubics) {
  const double bulge = std::fabs(arc.segment.bulge);
  const double radius = RadiusOf(arc);
  // How far the cubic of an arc leaves it: at most this, up to a quarter of a circle, where it is
  // 0.00027 radii, and it falls with the sixth power of the angle.
  constexpr double kWorst = 0.08;
  constexpr double kQuarter = 0.42;
  const double strays = radius * kWorst * (bulge * bulge * bulge) * (bulge * bulge * bulge);
  if (std::isfinite(radius) && (bulge > kQuarter || strays > tolerance)) {
    AppendCubics(Between(arc, 0, 0.5), tolerance, cubics);
    AppendCubics(Between(arc, 0.5, 1), tolerance, cubics);
    cubics->back().end = arc.segment.end;
    return;
  }
  if (!std::isfinite(radius)) {
    cubics->push_back({SegmentKind::kLine, arc.segment.end});
    return;
  }
  const double reach = radius * bulge * 4 / 3;
  cubics->push_back({SegmentKind::kCubic, arc.segment.end, arc.start + DirectionAt(arc, 0) * reach,
                     arc.segment.end - DirectionAt(arc, 1) * reach});
}

Piece Reversed(const Piece& piece) {
  Piece result = piece;
  result.start = piece.segment.end;
  result.segment.end = piece.start;
  result.segment.bulge = -piece.segment.bulge;
  if (piece.segment.kind == SegmentKind::kCubic) {
    std::swap(result.segment.first, result.segment.second);
  }
  return result;
}

Piece Between(const Piece& piece, double from, double to) {
  if (from > to) return Reversed(Between(piece, to, from));
  if (from == 0 && to == 1) return piece;
  Piece part;
  part.start = PointAt(piece, from);
  part.segment.kind = piece.segment.kind;
  part.segment.end = PointAt(piece, to);
  if (piece.segment.kind == SegmentKind::kArc) {
    const double bulge = piece.segment.bulge;
    part.segment.bulge = (to - from) * bulge / (1 + from * to * bulge * bulge);
  } else {
    const Polynomial c = PartOf(PolynomialOf(piece), from, to);
    if (piece.segment.kind == SegmentKind::kQuadratic) {
      part.segment.first = c.at + c.d1 * 0.5;
    } else if (piece.segment.kind == SegmentKind::kCubic) {
      part.segment.first = c.at + c.d1 * (1.0 / 3);
      part.segment.second = c.at + (c.d1 * 2 + c.d2) * (1.0 / 3);
    }
  }
  return part;
}

Path Reversed(const Path& path) {
  Path result;
  result.closed = path.closed;
  result.start = path.segments.empty() ? path.start : path.segments.back().end;
  for (size_t i = path.segments.size(); i-- > 0;) {
    const P2& start = i > 0 ? path.segments[i - 1].end : path.start;
    result.segments.push_back(Reversed(Piece{start, path.segments[i]}).segment);
  }
  return result;
}

bool IsPoint(const Piece& piece) {
  const Segment& s = piece.segment;
  if (!(s.end == piece.start)) return false;
  if (s.kind == SegmentKind::kQuadratic) return s.first == piece.start;
  if (s.kind == SegmentKind::kCubic) return s.first == piece.start && s.second == piece.start;
  return true;
}

std::vector<Piece> PiecesOf(const Path& path) {
  std::vector<Piece> pieces;
  P2 at = path.start;
  for (const Segment& segment : path.segments) {
    const Piece piece = {at, segment};
    if (!IsPoint(piece)) pieces.push_back(piece);
    at = segment.end;
  }
  return pieces;
}

double RadiusOf(const Piece& arc) {
  const double bulge = std::fabs(arc.segment.bulge);
  if (bulge == 0) return HUGE_VAL;
  return Length(arc.segment.end - arc.start) * (1 + bulge * bulge) / (4 * bulge);
}

P2 CentreOf(const Piece& arc) {
  const double bulge = arc.segment.bulge;
  const P2 chord = arc.segment.end - arc.start;
  return Midpoint(arc.start, arc.segment.end) +
         TurnedLeft(chord) * ((1 - bulge * bulge) / (4 * bulge));
}

}  // namespace kerno
