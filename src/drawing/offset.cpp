#include "drawing/offset.h"

#include <algorithm>

#include "drawing/fit_arcs.h"
#include "drawing/segment.h"
#include "drawing/weld.h"

namespace kerno {
namespace {

// What the arcs stray; moving them to the right adds less than the rest.
constexpr double kFitShare = 0.5;
// Where arcs meet within a degree or so, the moved ones meet without a corner as long as their ends
// move by no more than this share of the tolerance for it.
constexpr double kSmoothTurn = 0.0192;
constexpr double kJointShare = 0.25;
// What is left over is thinner than this share of the tolerance: as good as nothing.
constexpr double kSliverShare = 0.5;
// Nothing shorter than this share of the tolerance stays between other pieces.
constexpr double kSpeckShare = 0.4;

Segment LineTo(const P2& end) {
  Segment line;
  line.end = end;
  return line;
}

// The tangent of half the angle whose own tangent is given.
double HalfTangent(double tangent) {
  return tangent / (1 + SquareRoot(1 + tangent * tangent));
}

// What stands between the moved ends of two pieces.
class Corner {
 public:
  Corner(const Piece& before, const Piece& after, double distance, double tolerance)
      : at_(after.start) {
    const P2 arriving = DirectionAt(before, 1), leaving = DirectionAt(after, 0);
    turn_ = Cross(arriving, leaving);
    ahead_ = Dot(arriving, leaving);
    end_ = at_ - TurnedLeft(arriving) * distance;
    start_ = at_ - TurnedLeft(leaving) * distance;
    is_smooth_ = ahead_ > 0 && std::fabs(turn_) < kSmoothTurn &&
                 std::fabs(turn_) * distance < tolerance * kJointShare;
    if (is_smooth_) end_ = start_ = at_ - TurnedLeft(Unit(arriving + leaving)) * distance;
  }

  const P2& End() const { return end_; }      // of the piece before
  const P2& Start() const { return start_; }  // of the piece after

  void Append(std::vector<Segment>* segments) const {
    if (is_smooth_) return;
    if (turn_ < 0 && ahead_ > -1 + 1e-12) {
      // Inwards the moved pieces cross. The way over the corner itself keeps what lies between them
      // inside the rest.
      segments->push_back(LineTo(at_));
      segments->push_back(LineTo(start_));
      return;
    }
    Segment arc = LineTo(start_);
    arc.kind = SegmentKind::kArc;
    arc.bulge = ahead_ > -1 + 1e-12 ? HalfTangent(turn_ / (1 + ahead_)) : 1;
    segments->push_back(arc);
  }

 private:
  P2 at_;
  double turn_, ahead_;
  bool is_smooth_;
  P2 end_, start_;
};

// An arc that turns right about a point nearer than the distance.
bool TurnsInside(const Piece& piece, double distance) {
  return piece.segment.kind == SegmentKind::kArc && piece.segment.bulge < 0 &&
         RadiusOf(piece) <= distance;
}

// Each piece moved to its right, as closed paths that go counter-clockwise around all that lies
// between the path and what it moves to, and which may cross themselves and each other.
void MoveRight(const Path& path, double distance, double tolerance, std::vector<Path>* moved) {
  const std::vector<Piece> pieces = PiecesOf(path);
  if (pieces.empty()) return;
  std::vector<Corner> corners;  // before each piece
  for (size_t i = 0; i < pieces.size(); ++i) {
    corners.emplace_back(pieces[i > 0 ? i - 1 : pieces.size() - 1], pieces[i], distance, tolerance);
  }
  Path whole;
  whole.start = corners[0].Start();
  for (size_t i = 0; i < pieces.size(); ++i) {
    const Corner& next = corners[i + 1 < pieces.size() ? i + 1 : 0];
    const Piece& piece = pieces[i];
    Segment segment = piece.segment;
    segment.end = next.End();
    if (TurnsInside(piece, distance)) {
      // The moved arc lies on the other side of its centre and runs the wrong way around what is
      // between: a wedge on either side of the centre, each the right way around, stands in for it.
      const P2 centre = CentreOf(piece);
      for (const P2& p : {piece.start, centre, piece.segment.end, next.End()}) {
        whole.segments.push_back(LineTo(p));
      }
      segment.end = corners[i].Start();
      segment.bulge = -segment.bulge;
      moved->push_back({centre, {LineTo(next.End()), segment, LineTo(centre)}, true});
    } else {
      whole.segments.push_back(segment);
    }
    next.Append(&whole.segments);
  }
  moved->push_back(std::move(whole));
}

double RoughLength(const Piece& piece) {
  return Length(piece.segment.end - piece.start) * (1 + piece.segment.bulge * piece.segment.bulge);
}

// Where moved pieces run into each other at a small angle, or touch a wedge, the union leaves
// specks that stand across the outline. Without them the longer neighbour reaches a little farther,
// as it turns the least by that.
Path WithoutSpecks(const Path& path, double shortest) {
  std::vector<Piece> pieces = PiecesOf(path);
  const auto is_long = [&](const Piece& piece) { return RoughLength(piece) >= shortest; };
  const auto first = std::ranges::find_if(pieces, is_long);
  if (first == pieces.end()) return {};
  std::rotate(pieces.begin(), first, pieces.end());
  std::vector<Piece> kept;
  for (const Piece& piece : pieces) {
    if (is_long(piece)) {
      kept.push_back(piece);
    } else if (Length(piece.segment.end - kept.back().segment.end) >= shortest) {
      // One of many in a row.
      kept.push_back({kept.back().segment.end, LineTo(piece.segment.end)});
    }
  }
  if (kept.size() < 2) return {};
  for (size_t i = 0; i < kept.size(); ++i) {
    Piece& before = kept[i > 0 ? i - 1 : kept.size() - 1];
    if (RoughLength(before) > RoughLength(kept[i])) {
      before.segment.end = kept[i].start;
    } else {
      kept[i].start = before.segment.end;
    }
  }
  Path result;
  result.start = kept[0].start;
  for (const Piece& piece : kept) result.segments.push_back(piece.segment);
  return result;
}

}  // namespace

OffsetResult Offset(std::span<const Path> paths, double distance, double tolerance) {
  // Inwards is outwards for everything around: the same paths the other way round, in a plane that
  // is filled but for them.
  const bool inwards = distance < 0;
  std::vector<Path> moved;
  std::vector<size_t> moved_begin;  // those of each path
  for (const Path& path : paths) {
    moved_begin.push_back(moved.size());
    const Path arcs = FitTangentArcs(path, tolerance * kFitShare);
    MoveRight(inwards ? Reversed(arcs) : arcs, std::fabs(distance), tolerance, &moved);
  }
  moved_begin.push_back(moved.size());
  WeldResult united =
      UnionOf(moved, tolerance, {FillRule::kPositive, inwards ? 1 : 0, tolerance * kSliverShare});
  OffsetResult result;
  for (WeldedPath& outline : united.paths) {
    Path path = WithoutSpecks(outline.path, tolerance * kSpeckShare);
    if (path.segments.empty()) continue;
    result.paths.push_back(inwards ? Reversed(path) : std::move(path));
  }
  for (size_t i = 0; i < paths.size(); ++i) {
    const auto begin = united.vanished.begin();
    if (std::all_of(begin + static_cast<std::ptrdiff_t>(moved_begin[i]),
                    begin + static_cast<std::ptrdiff_t>(moved_begin[i + 1]),
                    [](bool is_gone) { return is_gone; })) {
      ++result.vanished;
    }
  }
  return result;
}

}  // namespace kerno
