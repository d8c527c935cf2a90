#include "drawing/outline_tracer.h"

#include <algorithm>
#include <bit>
#include <cstdlib>

#include "base/stop.h"

namespace kerno {
namespace {

constexpr uint32_t kNone = 0xFFFFFFFF;
constexpr uint32_t kNoPiece = kNone;
// Crossings are rounded to the grid, and edges that end there lie off their chords by so many
// units.
constexpr int32_t kNear = 2;

uint64_t HashOf(const GridPoint& p) {
  uint64_t hash = (static_cast<uint64_t>(static_cast<uint32_t>(p.x)) << 32) |
                  static_cast<uint64_t>(static_cast<uint32_t>(p.y));
  hash *= 0x9E3779B97F4A7C15;
  return hash ^ (hash >> 29);
}

int64_t Distance(const GridPoint& a, const GridPoint& b) {
  return std::max(std::abs(int64_t{a.x} - b.x), std::abs(int64_t{a.y} - b.y));
}

// Where the point stands along the chord, 0 at its start and 1 at its end.
double ShareOf(const Chord& chord, const GridPoint& p) {
  const P2 along = {static_cast<double>(chord.to.x) - chord.from.x,
                    static_cast<double>(chord.to.y) - chord.from.y};
  const P2 way = {static_cast<double>(p.x) - chord.from.x, static_cast<double>(p.y) - chord.from.y};
  return Dot(way, along) / Dot(along, along);
}

bool IsNear(const Chord& chord, const GridPoint& p) {
  const double length = std::max(1.0, Length(P2{static_cast<double>(chord.to.x) - chord.from.x,
                                                static_cast<double>(chord.to.y) - chord.from.y}));
  if (std::fabs(static_cast<double>(Side(chord.from, chord.to, p))) > kNear * length) return false;
  const double share = ShareOf(chord, p);
  const double slack = kNear / length;
  return share >= -slack && share <= 1 + slack;
}

// Less area than rounding makes on the way around.
bool IsSliver(const Polygon& outline) {
  double area = 0, length = 0;
  for (size_t i = 0; i < outline.size(); ++i) {
    const GridPoint& a = outline[i];
    const GridPoint& b = outline[i + 1 < outline.size() ? i + 1 : 0];
    area += static_cast<double>(Side(outline[0], a, b)) * 0.5;
    length += static_cast<double>(Distance(a, b));
  }
  return std::fabs(area) <= length * kNear;
}

}  // namespace

OutlineTracer::OutlineTracer(const ChordGrid& grid, const std::vector<size_t>& paths)
    : grid_(grid), paths_(paths) {
  size_t count = 0;
  for (const size_t path : paths) count += grid.ChordsBegin(path + 1) - grid.ChordsBegin(path);
  first_.assign(std::bit_ceil(2 * count + 1), kNone);
  entries_.reserve(count);
  for (const size_t path : paths) {
    for (size_t i = grid.ChordsBegin(path); i < grid.ChordsBegin(path + 1); ++i) {
      uint32_t& first = first_[HashOf(grid.Chords()[i].from) & (first_.size() - 1)];
      entries_.push_back({static_cast<uint32_t>(i), first});
      first = static_cast<uint32_t>(entries_.size() - 1);
    }
  }
}

template <class Visit>
void OutlineTracer::ForEachChordFrom(const GridPoint& p, const Visit& visit) const {
  uint32_t entry = first_[HashOf(p) & (first_.size() - 1)];
  for (; entry != kNone; entry = entries_[entry].next) {
    const size_t chord = entries_[entry].chord;
    if (grid_.Chords()[chord].from == p) visit(chord);
  }
}

bool OutlineTracer::IsCorner(const GridPoint& p) const {
  bool found = false;
  ForEachChordFrom(p, [&](size_t) { found = true; });
  return found;
}

bool OutlineTracer::IsAlong(size_t chord, const GridPoint& from, const GridPoint& to) const {
  return IsNear(grid_.Chords()[chord], from) && IsNear(grid_.Chords()[chord], to);
}

OutlineTracer::Run OutlineTracer::PartOf(size_t index, const GridPoint& from,
                                         const GridPoint& to) const {
  const Chord& chord = grid_.Chords()[index];
  const auto t_at = [&](const GridPoint& p) {
    if (p == chord.from) return chord.t_from;
    if (p == chord.to) return chord.t_to;
    return chord.t_from + (chord.t_to - chord.t_from) * std::clamp(ShareOf(chord, p), 0.0, 1.0);
  };
  return {chord.piece, chord.path, t_at(from), t_at(to), from, to};
}

// Of several chords, the one that goes on from the run before; rather one that is the whole edge
// than one that it is a part of.
OutlineTracer::Run OutlineTracer::RunAlong(const GridPoint& from, const GridPoint& to,
                                           const Run* before) const {
  Run best = {kNoPiece, 0, 0, 0, from, to};
  bool goes_on = false;
  const auto consider = [&](size_t chord) {
    const Run run = PartOf(chord, from, to);
    if (run.from == run.to) return;
    const bool continues = before && (GoesOn(*before, run) || MeetAtEnds(*before, run));
    if (best.piece != kNoPiece && (goes_on || !continues)) return;
    best = run;
    goes_on = continues;
  };
  const auto consider_near = [&](size_t chord) {
    if (IsAlong(chord, from, to)) consider(chord);
  };
  const auto for_each_at_ends = [&](const auto& visit) {
    for (const GridPoint& p : {from, to}) {
      ForEachChordFrom(p, [&](size_t chord) {
        visit(chord);
        visit(grid_.ChordBefore(chord));
      });
    }
  };
  for_each_at_ends([&](size_t chord) {
    const Chord& c = grid_.Chords()[chord];
    if ((c.from == from && c.to == to) || (c.from == to && c.to == from)) consider(chord);
  });
  if (best.piece != kNoPiece) return best;
  for_each_at_ends(consider_near);
  if (best.piece != kNoPiece) return best;
  // Between two crossings.
  const GridBox box = {{from.x - kNear, from.y - kNear}, {from.x + kNear, from.y + kNear}};
  grid_.Boxes().ForEachNear(box, 0, grid_.Chords().size(), [&](size_t chord) {
    if (std::ranges::binary_search(paths_, grid_.Chords()[chord].path)) consider_near(chord);
  });
  return best;
}

bool OutlineTracer::GoesOn(const Run& before, const Run& after) const {
  if (before.piece != after.piece || before.piece == kNoPiece) return false;
  if ((before.from < before.to) != (after.from < after.to)) return false;
  if (before.to == after.from) return true;
  const Piece& piece = grid_.Pieces()[before.piece];
  return Length(VelocityAt(piece, before.to)) * std::fabs(before.to - after.from) <
         2 * kNear * grid_.Unit();
}

// At a point where one piece's end is another one's start.
bool OutlineTracer::MeetAtEnds(const Run& before, const Run& after) const {
  if (before.piece == kNoPiece || after.piece == kNoPiece) return false;
  const bool at_ends = (before.to == 0 || before.to == 1) && (after.from == 0 || after.from == 1);
  return at_ends && PointAt(grid_.Pieces()[before.piece], before.to) ==
                        PointAt(grid_.Pieces()[after.piece], after.from);
}

std::vector<OutlineTracer::Run> OutlineTracer::RunsOf(const Polygon& outline) const {
  // Without the crossings that rounding has set beside another point.
  Polygon corners;
  for (const GridPoint& p : outline) {
    if (!corners.empty() && Distance(corners.back(), p) <= kNear) {
      if (!IsCorner(p)) continue;
      if (!IsCorner(corners.back())) corners.pop_back();
    }
    corners.push_back(p);
  }
  while (corners.size() > 1 && Distance(corners.back(), corners.front()) <= kNear &&
         !IsCorner(corners.back())) {
    corners.pop_back();
  }
  std::vector<Run> runs;
  for (size_t i = 0; i < corners.size(); ++i) {
    StopIfAsked();
    const GridPoint& to = corners[i + 1 < corners.size() ? i + 1 : 0];
    const Run run = RunAlong(corners[i], to, runs.empty() ? nullptr : &runs.back());
    if (!runs.empty() && GoesOn(runs.back(), run)) {
      runs.back().to = run.to;
      runs.back().end = run.end;
    } else {
      runs.push_back(run);
    }
  }
  if (runs.size() > 1 && GoesOn(runs.back(), runs.front())) {
    runs.front().from = runs.back().from;
    runs.front().start = runs.back().start;
    runs.pop_back();
  }
  return runs;
}

bool OutlineTracer::FindCrossing(const Run& before, const Run& after, double* t_before,
                                 double* t_after) const {
  const Piece& a = grid_.Pieces()[before.piece];
  const Piece& b = grid_.Pieces()[after.piece];
  double s = before.to, t = after.from;
  for (int i = 0; i < 12; ++i) {
    const P2 gap = PointAt(b, t) - PointAt(a, s);
    const P2 along_a = VelocityAt(a, s), along_b = VelocityAt(b, t);
    const double turn = Cross(along_a, along_b);
    constexpr double kParallel = 1e-3;
    if (std::fabs(turn) < kParallel * Length(along_a) * Length(along_b)) return false;
    const double ds = Cross(gap, along_b) / turn, dt = Cross(gap, along_a) / turn;
    s += ds;
    t += dt;
    if (std::fabs(ds) + std::fabs(dt) < 1e-14) break;
  }
  if (!(s >= 0 && s <= 1 && t >= 0 && t <= 1)) return false;
  const P2 found = PointAt(a, s);
  const double moved = Length(found - grid_.InPlane(before.end));
  if (Length(found - PointAt(b, t)) > grid_.Unit() || moved > 8 * grid_.Tolerance()) return false;
  *t_before = s;
  *t_after = t;
  return true;
}

P2 OutlineTracer::Joint(Run* before, Run* after) const {
  if (MeetAtEnds(*before, *after)) return PointAt(grid_.Pieces()[after->piece], after->from);
  if (before->piece != kNoPiece && after->piece != kNoPiece) {
    double s = 0, t = 0;
    if (FindCrossing(*before, *after, &s, &t) &&
        (s > before->from) == (before->to > before->from) &&
        (t < after->to) == (after->from < after->to)) {
      before->to = s;
      after->from = t;
      return PointAt(grid_.Pieces()[after->piece], t);
    }
  }
  // Where curves run into each other too flat to tell: an end of one of them, or the chords'
  // crossing.
  if (before->piece != kNoPiece && (before->to == 0 || before->to == 1)) {
    return PointAt(grid_.Pieces()[before->piece], before->to);
  }
  if (after->piece != kNoPiece && (after->from == 0 || after->from == 1)) {
    return PointAt(grid_.Pieces()[after->piece], after->from);
  }
  return grid_.InPlane(before->end);
}

void OutlineTracer::AppendRun(const Run& run, const P2& start, const P2& end, Path* path) const {
  Segment line;
  line.end = end;
  if (run.piece == kNoPiece) {
    if (!(start == end)) path->segments.push_back(line);
    return;
  }
  Segment segment = Between(grid_.Pieces()[run.piece], run.from, run.to).segment;
  segment.end = end;
  if (start == end && segment.kind == SegmentKind::kLine) return;
  path->segments.push_back(segment);
}

TracedOutline OutlineTracer::Trace(const Polygon& outline) const {
  TracedOutline traced;
  if (IsSliver(outline)) return traced;
  std::vector<Run> runs = RunsOf(outline);
  const size_t count = runs.size();
  if (count == 0) return traced;
  std::vector<P2> joints(count);  // where each run begins
  for (size_t i = 0; i < count; ++i) joints[i] = Joint(&runs[i > 0 ? i - 1 : count - 1], &runs[i]);
  traced.path.start = joints[0];
  for (size_t i = 0; i < count; ++i) {
    AppendRun(runs[i], joints[i], joints[i + 1 < count ? i + 1 : 0], &traced.path);
    if (runs[i].piece != kNoPiece) traced.sources.push_back(runs[i].path);
  }
  return traced;
}

}  // namespace kerno
