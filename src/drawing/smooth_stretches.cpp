#include "drawing/smooth_stretches.h"

#include <algorithm>
#include <utility>

namespace kerno {
namespace {

constexpr double kCosineOfADegree = 0.99984769515639127;
// The cosine of 10 degrees.
constexpr double kCuspTurn = 0.98480775301220802;

bool IsCurve(const Piece& piece) {
  return piece.segment.kind == SegmentKind::kQuadratic || piece.segment.kind == SegmentKind::kCubic;
}

bool IsCorner(const P2& arriving, const P2& leaving) {
  return Dot(arriving, leaving) < kCosineOfADegree;
}

struct Place {
  double t;
  P2 direction;
};

Place PlaceOn(const Piece& piece, double t) {
  return {t, DirectionAt(piece, t)};
}

double ReachOf(const Polynomial& part) {
  return Length(part.d1) + Length(part.d2) + Length(part.d3);
}

// A part of a curve that is a corner.
struct SharpTurn {
  double from, to;
};

void FindSharpTurns(const Piece& piece, const Polynomial& curve, double size, const Place& from,
                    const Place& to, std::vector<SharpTurn>* turns) {
  if (Dot(from.direction, to.direction) >= kCuspTurn) return;
  if (ReachOf(PartOf(curve, from.t, to.t)) < size) {
    if (!turns->empty() && turns->back().to == from.t) {
      turns->back().to = to.t;
    } else {
      turns->push_back({from.t, to.t});
    }
    return;
  }
  const Place between = PlaceOn(piece, 0.5 * (from.t + to.t));
  FindSharpTurns(piece, curve, size, from, between, turns);
  FindSharpTurns(piece, curve, size, between, to, turns);
}

// The middle of a sharp turn: where the curve is slowest.
P2 CornerOf(const Piece& piece, const SharpTurn& turn) {
  constexpr int kSteps = 32;
  double best = turn.from, slowest = HUGE_VAL;
  for (int i = 0; i <= kSteps; ++i) {
    const double t = turn.from + (turn.to - turn.from) * i * (1.0 / kSteps);
    const double speed = Length(VelocityAt(piece, t));
    if (speed < slowest) slowest = speed, best = t;
  }
  return PointAt(piece, best);
}

// Whether the curve turns evenly and by less than a right angle, as nearly all curves of fonts do:
// each of its legs goes on in about the direction of the others.
bool IsGentle(const Piece& piece) {
  const Segment& s = piece.segment;
  const bool cubic = s.kind == SegmentKind::kCubic;
  const P2 first = s.first - piece.start, last = s.end - (cubic ? s.second : s.first);
  const P2 middle = cubic ? s.second - s.first : first;
  // No leg is so short that the curve all but stops there.
  constexpr double kLeast = 1.0 / 64;
  const double a = Dot(first, first), b = Dot(middle, middle), c = Dot(last, last);
  return std::min({a, b, c}) > kLeast * kLeast * std::max({a, b, c}) && Dot(first, last) > 0 &&
         Dot(first, middle) > 0 && Dot(middle, last) > 0;
}

// Appends the parts of a piece between its sharp turns, with the corners where they start and end
// in place of the halves of those turns.
struct SmoothPart {
  Piece piece;
  P2 first, last;
};

void SplitAtSharpTurns(const Piece& piece, double size, std::vector<SmoothPart>* parts) {
  parts->clear();
  if (!IsCurve(piece) || IsGentle(piece)) {
    parts->push_back({piece, piece.start, piece.segment.end});
    return;
  }
  std::vector<SharpTurn> turns;
  const Polynomial curve = PolynomialOf(piece);
  constexpr int kParts = 4;
  for (int i = 0; i < kParts; ++i) {
    FindSharpTurns(piece, curve, size, PlaceOn(piece, i * (1.0 / kParts)),
                   PlaceOn(piece, (i + 1) * (1.0 / kParts)), &turns);
  }
  turns.push_back({1, 1});
  double from = 0;
  P2 first = piece.start;
  for (const SharpTurn& turn : turns) {
    if (turn.from > from) {
      parts->push_back({Between(piece, from, turn.from), first, CornerOf(piece, turn)});
      first = parts->back().last;
    }
    from = turn.to;
  }
  if (parts->empty()) parts->push_back({piece, piece.start, piece.segment.end});
  parts->back().last = piece.segment.end;
}

// A closed path starts at a corner, or beside a line or arc of its own, if it has one.
void StartAtAnEnd(std::vector<Piece>* pieces) {
  for (size_t i = 0; i < pieces->size(); ++i) {
    const Piece& before = (*pieces)[i > 0 ? i - 1 : pieces->size() - 1];
    const Piece& after = (*pieces)[i];
    if (!IsCurve(before) || !IsCurve(after) ||
        IsCorner(DirectionAt(before, 1), DirectionAt(after, 0))) {
      std::rotate(pieces->begin(), pieces->begin() + static_cast<std::ptrdiff_t>(i), pieces->end());
      return;
    }
  }
}

// One stretch goes over into the next without a corner.
void Join(Stretch* before, Stretch* after) {
  if (IsCorner(before->last.direction, after->first.direction)) return;
  before->ends_at_corner = after->starts_at_corner = false;
  if (before->curved && after->curved) {
    before->last.direction = Unit(before->last.direction + after->first.direction);
    after->first.direction = before->last.direction;
  } else if (before->curved) {
    before->last.direction = after->first.direction;
  } else if (after->curved) {
    after->first.direction = before->last.direction;
  }
}

}  // namespace

SmoothStretches StretchesOf(const Path& path, double size, StretchRule rule) {
  std::vector<Piece> whole = PiecesOf(path);
  if (path.closed) StartAtAnEnd(&whole);
  SmoothStretches result;
  result.pieces.reserve(whole.size());
  std::vector<Stretch>& stretches = result.stretches;
  std::vector<SmoothPart> parts;
  for (const Piece& piece : whole) {
    SplitAtSharpTurns(piece, size, &parts);
    bool after_turn = false;
    for (const auto& [part, first, last] : parts) {
      const P2 leaving = DirectionAt(part, 0);
      const bool curved = IsCurve(part);
      const bool goes_on = rule == StretchRule::kSmooth && !stretches.empty() && !after_turn &&
                           stretches.back().curved && curved &&
                           !IsCorner(stretches.back().last.direction, leaving);
      if (!goes_on) {
        const size_t at = result.pieces.size();
        stretches.push_back({at, at, {first, leaving}, {}, curved});
      }
      result.pieces.push_back(part);
      stretches.back().end = result.pieces.size();
      stretches.back().last = {last, DirectionAt(part, 1)};
      after_turn = true;
    }
  }
  for (size_t i = 1; i < stretches.size(); ++i) Join(&stretches[i - 1], &stretches[i]);
  if (path.closed && !stretches.empty()) Join(&stretches.back(), &stretches.front());
  if (path.closed && stretches.size() == 1) stretches[0].is_loop = !stretches[0].ends_at_corner;
  return result;
}

}  // namespace kerno
