#include "drawing/strokes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <set>
#include <unordered_map>
#include <utility>

#include "drawing/segment.h"
#include "drawing/vector.h"

namespace kerno {
namespace {

constexpr double kMostBulge = 0.1;  // of the arc that one cubic curve stands for

// A part of a line, by the line's parameter.
struct Stretch {
  double from, to;
};

class Repeats {
 public:
  explicit Repeats(double tolerance) : tolerance_(tolerance) {}

  // The parts of a piece that nothing before has drawn, in order; all is noted as drawn.
  std::vector<Piece> NewPartsOf(const Piece& piece) {
    if (piece.segment.kind == SegmentKind::kLine) return NewPartsOfLine(piece);
    if (curves_.insert(KeyOf(piece)).second) return {piece};
    return {};
  }

 private:
  struct Line {
    P2 from, to;
  };
  using Key = std::array<int64_t, 10>;

  int64_t Rounded(double value) const {
    constexpr double kMost = 9e18;
    return std::llround(std::clamp(value / tolerance_, -kMost, kMost));
  }

  // The same for both directions.
  Key KeyOf(const Piece& piece) const {
    const Key forward = DirectedKeyOf(piece), backward = DirectedKeyOf(Reversed(piece));
    return std::min(forward, backward);
  }
  Key DirectedKeyOf(const Piece& piece) const {
    const Segment& s = piece.segment;
    Key key = {static_cast<int64_t>(s.kind), Rounded(piece.start.x), Rounded(piece.start.y),
               Rounded(s.end.x), Rounded(s.end.y)};
    if (s.kind == SegmentKind::kArc) {
      key[5] = std::llround(s.bulge * 1e6);
    } else {
      key[5] = Rounded(s.first.x), key[6] = Rounded(s.first.y);
      if (s.kind == SegmentKind::kCubic) key[7] = Rounded(s.second.x), key[8] = Rounded(s.second.y);
    }
    return key;
  }

  // A number for the line's direction, the same for both: those of lines that are nearly parallel
  // differ by 1 at most.
  static int DirectionOf(const P2& d) {
    const bool flat = std::fabs(d.x) >= std::fabs(d.y);
    const double slope = flat ? d.y / d.x : 2 - d.x / d.y;  // -1 to 3
    return static_cast<int>(std::floor((slope + 1) * (kDirections / 4.0))) % kDirections;
  }

  std::vector<Piece> NewPartsOfLine(const Piece& piece) {
    const P2 along = piece.segment.end - piece.start;
    const double length = Length(along);
    if (!(length > tolerance_)) return {};
    const P2 unit = along * (1 / length);
    const int direction = DirectionOf(along);
    std::vector<Stretch> drawn;
    for (const int step : {kDirections - 1, 0, 1}) {
      const auto near = lines_.find((direction + step) % kDirections);
      if (near == lines_.end()) continue;
      for (const Line& line : near->second) {
        const P2 a = line.from - piece.start, b = line.to - piece.start;
        if (std::fabs(Cross(unit, a)) > tolerance_ || std::fabs(Cross(unit, b)) > tolerance_) {
          continue;
        }
        const auto [from, to] = std::minmax({Dot(unit, a), Dot(unit, b)});
        if (to > tolerance_ && from < length - tolerance_) drawn.push_back({from, to});
      }
    }
    std::vector<Piece> parts = drawn.empty() ? std::vector{piece} : Rest(piece, length, drawn);
    for (const Piece& part : parts) lines_[direction].push_back({part.start, part.segment.end});
    return parts;
  }

  std::vector<Piece> Rest(const Piece& piece, double length, std::vector<Stretch> drawn) const {
    std::ranges::sort(drawn, {}, &Stretch::from);
    drawn.push_back({length, length});
    std::vector<Piece> parts;
    double reached = 0;
    for (const Stretch& stretch : drawn) {
      if (stretch.from - reached > tolerance_) {
        parts.push_back(Between(piece, reached / length, std::min(1.0, stretch.from / length)));
      }
      reached = std::max(reached, stretch.to);
    }
    return parts;
  }

  static constexpr int kDirections = 400;
  double tolerance_;
  std::set<Key> curves_;
  std::unordered_map<int, std::vector<Line>> lines_;
};

// The parts of one stroke as strokes again: those that follow each other stay together.
void AppendChains(const std::vector<Piece>& parts, double tolerance, std::vector<Path>* strokes) {
  const size_t first = strokes->size();
  const auto meet = [&](const P2& a, const P2& b) { return Length(a - b) <= tolerance; };
  for (const Piece& part : parts) {
    const bool follows =
        strokes->size() > first && strokes->back().segments.back().end == part.start;
    if (!follows) strokes->push_back({.start = part.start, .segments = {}, .closed = false});
    strokes->back().segments.push_back(part.segment);
  }
  if (strokes->size() == first) return;
  // What was cut out of the middle of a round leaves its end and its beginning together.
  Path& begin = (*strokes)[first];
  if (strokes->size() > first + 1 && strokes->back().segments.back().end == begin.start) {
    Path joined = std::move(strokes->back());
    strokes->pop_back();
    joined.segments.insert(joined.segments.end(), begin.segments.begin(), begin.segments.end());
    (*strokes)[first] = std::move(joined);
  }
  for (size_t i = first; i < strokes->size(); ++i) {
    Path& stroke = (*strokes)[i];
    stroke.closed = meet(stroke.start, stroke.segments.back().end);
    if (stroke.closed) stroke.segments.back().end = stroke.start;
  }
}

void AppendCurves(const Piece& arc, Path* path) {
  const double bulge = arc.segment.bulge;
  if (std::fabs(bulge) > kMostBulge) {
    const auto [first, second] = HalvesOf(arc);
    AppendCurves(first, path);
    AppendCurves(second, path);
    return;
  }
  const double handle = Length(arc.segment.end - arc.start) * (1 + bulge * bulge) / 3;
  Segment curve = {.kind = SegmentKind::kCubic, .end = arc.segment.end};
  curve.first = arc.start + DirectionAt(arc, 0) * handle;
  curve.second = arc.segment.end - DirectionAt(arc, 1) * handle;
  path->segments.push_back(curve);
}

}  // namespace

std::vector<Path> DrawnOnce(const std::vector<Path>& strokes, double tolerance) {
  Repeats repeats(tolerance);
  std::vector<Path> once;
  for (const Path& stroke : strokes) {
    std::vector<Piece> parts;
    for (const Piece& piece : PiecesOf(stroke)) {
      for (const Piece& part : repeats.NewPartsOf(piece)) parts.push_back(part);
    }
    AppendChains(parts, tolerance, &once);
  }
  return once;
}

std::vector<Path> WithShortWays(std::vector<Path> strokes) {
  // The shortest ways that end with each stroke as it is and reversed.
  struct Ways {
    double length[2] = {0, 0};
    int before[2] = {0, 0};  // the direction of the stroke before
  };
  if (strokes.empty()) return strokes;
  const auto end = [&](size_t i, int reversed) {
    return reversed ? strokes[i].start : strokes[i].segments.back().end;
  };
  std::vector<Ways> ways(strokes.size());
  for (size_t i = 1; i < strokes.size(); ++i) {
    for (const int direction : {0, 1}) {
      const P2 to = end(i, 1 - direction);
      double best[2] = {};
      for (const int before : {0, 1}) {
        best[before] = ways[i - 1].length[before] + Length(to - end(i - 1, before));
      }
      const int which = best[1] < best[0] ? 1 : 0;
      ways[i].length[direction] = best[which];
      ways[i].before[direction] = which;
    }
  }
  int direction = ways.back().length[1] < ways.back().length[0] ? 1 : 0;
  for (size_t i = strokes.size(); i-- > 0;) {
    if (direction == 1) strokes[i] = Reversed(strokes[i]);
    direction = ways[i].before[direction];
  }
  return strokes;
}

std::pair<Piece, Piece> HalvesOf(const Piece& arc) {
  // The tangent of half an angle from the tangent of the whole.
  const double middle = 1 / (1 + SquareRoot(1 + arc.segment.bulge * arc.segment.bulge));
  return {Between(arc, 0, middle), Between(arc, middle, 1)};
}

Path WithoutArcs(const Path& path) {
  Path result = {.start = path.start, .segments = {}, .closed = path.closed};
  P2 from = path.start;
  for (const Segment& segment : path.segments) {
    if (segment.kind == SegmentKind::kArc) {
      AppendCurves({from, segment}, &result);
    } else {
      result.segments.push_back(segment);
    }
    from = segment.end;
  }
  return result;
}

}  // namespace kerno
