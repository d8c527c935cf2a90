#include "drawing/fit_arcs.h"

#include <algorithm>
#include <utility>

#include "drawing/arc_chain.h"
#include "drawing/flatten.h"
#include "drawing/measures.h"

namespace kerno {
namespace {

constexpr double kCosineOfADegree = 0.99984769515639127;
// The tangent of 0.9 degrees: what arcs may turn at once, safely below a degree.
constexpr double kJointSlope = 0.0157;
// Sizes at which a letter keeps its shape, as shares of the path's box.
constexpr double kCoarsest = 0.05;
// A turn within less than this share of the tolerance is a corner.
constexpr double kPointShare = 1.0 / 1024;
// The cosine of 10 degrees.
constexpr double kCuspTurn = 0.98480775301220802;

// How finely a stretch is sampled.
struct Sampling {
  double share;  // of the tolerance: how far the path strays from the chord between two samples
  double turn;   // the cosine of the most that it turns between two samples
  int stride;    // of the samples where arcs may meet
  double tolerance_share;
};
// The first that leads to arcs is taken; the later ones are for narrow bends.
constexpr Sampling kSamplings[] = {{1.0 / 32, 0.98480775301220802, 3, 1},
                                   {1.0 / 32, 0.98480775301220802, 3, 0.9},
                                   {1.0 / 64, 0.99619469809174555, 2, 0.9},
                                   {1.0 / 96, 0.99904822158185779, 1, 0.6}};

bool IsCurve(const Piece& piece) {
  return piece.segment.kind == SegmentKind::kQuadratic || piece.segment.kind == SegmentKind::kCubic;
}

bool IsCorner(const P2& arriving, const P2& leaving) {
  return Dot(arriving, leaving) < kCosineOfADegree;
}

// A stretch of the path without corners: one line or arc of its own, or curves.
struct Stretch {
  std::vector<Piece> pieces;
  P2 first, last;        // its ends
  P2 leaving, arriving;  // directions at its ends

  bool IsCurved() const { return IsCurve(pieces.front()); }
};

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

// A part of a piece between its sharp turns, with the corners where it starts and ends in place of
// the halves of those turns.
struct SmoothPart {
  Piece piece;
  P2 first, last;
};

std::vector<SmoothPart> SplitAtSharpTurns(const Piece& piece, double size) {
  if (!IsCurve(piece)) return {{piece, piece.start, piece.segment.end}};
  std::vector<SharpTurn> turns;
  const Polynomial curve = PolynomialOf(piece);
  constexpr int kParts = 4;
  for (int i = 0; i < kParts; ++i) {
    FindSharpTurns(piece, curve, size, PlaceOn(piece, i * (1.0 / kParts)),
                   PlaceOn(piece, (i + 1) * (1.0 / kParts)), &turns);
  }
  turns.push_back({1, 1});
  std::vector<SmoothPart> parts;
  double from = 0;
  P2 first = piece.start;
  for (const SharpTurn& turn : turns) {
    if (turn.from > from) {
      parts.push_back({Between(piece, from, turn.from), first, CornerOf(piece, turn)});
      first = parts.back().last;
    }
    from = turn.to;
  }
  if (parts.empty()) return {{piece, piece.start, piece.segment.end}};
  parts.back().last = piece.segment.end;
  return parts;
}

std::vector<Stretch> SplitAtCorners(const std::vector<Piece>& pieces, double size) {
  std::vector<Stretch> stretches;
  for (const Piece& whole : pieces) {
    bool after_turn = false;
    for (const auto& [piece, first, last] : SplitAtSharpTurns(whole, size)) {
      const P2 leaving = DirectionAt(piece, 0), arriving = DirectionAt(piece, 1);
      const bool goes_on = !stretches.empty() && !after_turn && stretches.back().IsCurved() &&
                           IsCurve(piece) && !IsCorner(stretches.back().arriving, leaving);
      if (!goes_on) stretches.push_back({{}, first, last, leaving, arriving});
      stretches.back().pieces.push_back(piece);
      stretches.back().last = last;
      stretches.back().arriving = arriving;
      after_turn = true;
    }
  }
  return stretches;
}

class Sampler {
 public:
  Sampler(double tolerance, const Sampling& sampling)
      : between_(tolerance * sampling.share), sampling_(sampling) {}

  std::vector<CurvePoint> Sample(const Stretch& stretch) {
    samples_.push_back({stretch.pieces.front().start, stretch.leaving});
    for (const Piece& piece : stretch.pieces) {
      const Polynomial curve = PolynomialOf(piece);
      constexpr int kLeastParts = 4;
      for (int i = 0; i < kLeastParts; ++i) {
        constexpr int kDeepest = 30;
        AddUpTo(piece, curve, PlaceOn(piece, i * (1.0 / kLeastParts)),
                PlaceOn(piece, (i + 1) * (1.0 / kLeastParts)), kDeepest);
      }
      samples_.back().at = piece.segment.end;
      samples_.back().may_join = true;
      since_joint_ = 0;
    }
    return std::move(samples_);
  }

 private:
  void AddUpTo(const Piece& piece, const Polynomial& curve, const Place& from, const Place& to,
               int depth) {
    const bool turns = Dot(from.direction, to.direction) < sampling_.turn;
    if (depth > 0 && (turns || DistanceFromChord(PartOf(curve, from.t, to.t)) > between_)) {
      const Place between = PlaceOn(piece, 0.5 * (from.t + to.t));
      AddUpTo(piece, curve, from, between, depth - 1);
      AddUpTo(piece, curve, between, to, depth - 1);
      return;
    }
    const bool may_join = ++since_joint_ == sampling_.stride;
    if (may_join) since_joint_ = 0;
    samples_.push_back({PointAt(piece, to.t), to.direction, may_join});
  }

  double between_;
  Sampling sampling_;
  std::vector<CurvePoint> samples_;
  int since_joint_ = 0;
};

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

std::vector<Segment> ArcsOf(const Stretch& stretch, double tolerance, const EndSlopes& ends) {
  for (const Sampling& sampling : kSamplings) {
    std::vector<CurvePoint> samples = Sampler(tolerance, sampling).Sample(stretch);
    samples.front() = {stretch.first, stretch.leaving};
    samples.back() = {stretch.last, stretch.arriving};
    auto arcs = ChainOfArcs(samples, tolerance * sampling.tolerance_share,
                            tolerance * sampling.share, kJointSlope, ends);
    if (arcs) return std::move(*arcs);
  }
  std::vector<Segment> chords;
  std::vector<ChordEnd> chord_ends;
  for (const Piece& piece : stretch.pieces) FlattenPiece(piece, tolerance, &chord_ends);
  for (const ChordEnd& end : chord_ends) {
    Segment chord;
    chord.end = end.point;
    chords.push_back(chord);
  }
  chords.back().end = stretch.last;
  return chords;
}

// How far arcs may leave from the direction of a curved stretch's end, next to another stretch.
double SlopeBeside(const P2& end, const Stretch& neighbour, const P2& beside) {
  if (IsCorner(end, beside)) return kAnySlope;
  // Both sides of a joint between curves give way.
  return neighbour.IsCurved() ? kJointSlope * 0.5 : kJointSlope;
}

}  // namespace

Path FitArcs(const Path& path, double tolerance) {
  Path result;
  result.closed = path.closed;
  result.start = path.start;
  std::vector<Piece> pieces = PiecesOf(path);
  if (pieces.empty()) return result;
  if (path.closed) StartAtAnEnd(&pieces);
  result.start = pieces.front().start;
  const Box2 box = BoxOf(path);
  tolerance = std::min(tolerance, std::max(box.Width(), box.Height()) * kCoarsest);

  std::vector<Stretch> stretches = SplitAtCorners(pieces, tolerance * kPointShare);
  const size_t count = stretches.size();
  if (path.closed && count == 1 && !IsCorner(stretches[0].arriving, stretches[0].leaving)) {
    stretches[0].leaving = Unit(stretches[0].arriving + stretches[0].leaving);
    stretches[0].arriving = stretches[0].leaving;
  }
  for (size_t i = 0; i < count; ++i) {
    Stretch& stretch = stretches[i];
    if (!stretch.IsCurved()) {
      result.segments.push_back(stretch.pieces.front().segment);
      continue;
    }
    EndSlopes ends = {kAnySlope, kAnySlope};
    const bool first = i == 0, last = i + 1 == count;
    // The directions of the line beside are those that the arcs must meet.
    if (!first || path.closed) {
      const Stretch& before = stretches[first ? count - 1 : i - 1];
      ends.first = SlopeBeside(stretch.leaving, before, before.arriving);
      if (ends.first < kAnySlope && !before.IsCurved()) {
        stretch.leaving = before.arriving;
      }
    }
    if (!last || path.closed) {
      const Stretch& after = stretches[last ? 0 : i + 1];
      ends.last = SlopeBeside(stretch.arriving, after, after.leaving);
      if (ends.last < kAnySlope && !after.IsCurved()) {
        stretch.arriving = after.leaving;
      }
    }
    for (const Segment& arc : ArcsOf(stretch, tolerance, ends)) result.segments.push_back(arc);
  }
  return result;
}

}  // namespace kerno
