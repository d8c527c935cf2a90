#include "drawing/tiled_union.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <map>
#include <span>
#include <utility>

#include "base/parallel.h"
#include "drawing/chord_grid.h"
#include "drawing/filled_area.h"

namespace kerno {
namespace {

constexpr int32_t kApart = 16;  // frames from what they go around, and from each other
constexpr int kSides = 4;

enum class Axis { kX, kY };

int32_t Along(Axis axis, const GridPoint& p) {
  return axis == Axis::kX ? p.x : p.y;
}

GridBox Grown(const GridBox& box, int32_t by) {
  return {{box.min.x - by, box.min.y - by}, {box.max.x + by, box.max.y + by}};
}

Polygon CornersOf(const GridBox& box) {
  return {box.min, {box.max.x, box.min.y}, box.max, {box.min.x, box.max.y}};
}

bool IsFilled(int winding, FillRule rule) {
  return rule == FillRule::kNonZero ? winding != 0 : winding > 0;
}

// Calls visit(a, b) for every edge.
template <class Visit>
void ForEachEdge(const Polygon& polygon, const Visit& visit) {
  for (size_t i = 0; i < polygon.size(); ++i) {
    visit(polygon[i], polygon[i + 1 < polygon.size() ? i + 1 : 0]);
  }
}

size_t CornerCount(std::span<const Polygon> polygons) {
  size_t count = 0;
  for (const Polygon& polygon : polygons) count += polygon.size();
  return count;
}

// A line across the plane where it is divided.
struct Seam {
  Axis axis = Axis::kX;  // the coordinate that all of its points share
  int32_t at = 0;

  bool operator<(const Seam& other) const {
    return axis != other.axis ? axis < other.axis : at < other.at;
  }
};

// Where an edge crosses, rounded to the grid; the same in both directions of the edge.
GridPoint CrossingOf(GridPoint a, GridPoint b, const Seam& seam) {
  if (Along(seam.axis, b) < Along(seam.axis, a)) std::swap(a, b);
  const int64_t whole = int64_t{Along(seam.axis, b)} - Along(seam.axis, a);
  const int64_t part = int64_t{seam.at} - Along(seam.axis, a);
  const auto between = [&](int32_t from, int32_t to) {
    const int64_t way = (int64_t{to} - from) * part;
    const int64_t rounded = way >= 0 ? (way + whole / 2) / whole : -((-way + whole / 2) / whole);
    return static_cast<int32_t>(from + rounded);
  };
  if (seam.axis == Axis::kX) return {seam.at, between(a.y, b.y)};
  return {between(a.x, b.x), seam.at};
}

// The part of a polygon on one side of a seam. What lies beyond is drawn back to the seam, so that
// the polygon goes around the points that stay as often as before.
Polygon OnOneSide(const Polygon& polygon, const Seam& seam, bool below) {
  Polygon part;
  const auto add = [&](const GridPoint& p) {
    if (!part.empty() && part.back() == p) return;
    const size_t count = part.size();
    // Of what runs along the seam, both ends are enough.
    if (count >= 2 && Along(seam.axis, p) == seam.at &&
        Along(seam.axis, part[count - 1]) == seam.at &&
        Along(seam.axis, part[count - 2]) == seam.at) {
      part.back() = p;
    } else {
      part.push_back(p);
    }
  };
  ForEachEdge(polygon, [&](const GridPoint& a, const GridPoint& b) {
    const int32_t from = Along(seam.axis, a), to = Along(seam.axis, b);
    if (below ? from <= seam.at : from >= seam.at) add(a);
    if ((from < seam.at && to > seam.at) || (from > seam.at && to < seam.at)) {
      add(CrossingOf(a, b, seam));
    }
  });
  const bool is_flat =
      std::ranges::all_of(part, [&](const GridPoint& p) { return Along(seam.axis, p) == seam.at; });
  if (is_flat) part.clear();
  return part;
}

std::vector<Polygon> Turned(std::vector<Polygon> polygons, int quarters) {
  for (Polygon& polygon : polygons) {
    for (GridPoint& p : polygon) {
      for (int i = 0; i < quarters; ++i) p = {-p.y, p.x};
    }
  }
  return polygons;
}

std::vector<Polygon> UnionFrom(int side, std::vector<Polygon> polygons, FillRule fill) {
  return Turned(UnionOf(Turned(std::move(polygons), side), fill), (kSides - side) % kSides);
}

// With one frame around the box for each time that something goes around it.
std::vector<Polygon> WithFrames(std::vector<Polygon> polygons, const GridBox& box, int winding) {
  for (int i = 1; i <= std::abs(winding); ++i) {
    Polygon frame = CornersOf(Grown(box, i * kApart));
    if (winding < 0) std::ranges::reverse(frame);
    polygons.push_back(std::move(frame));
  }
  return polygons;
}

struct Tile {
  GridBox box;
  int around = 0;                 // how often polygons go around all of it
  std::vector<Polygon> polygons;  // the others, within the box
};

// The sides of a box that hold both points, as seams; at most one of them is what an edge runs
// along, unless it is a point.
template <class Visit>
void ForEachSideAlong(const GridBox& box, const GridPoint& a, const GridPoint& b,
                      const Visit& visit) {
  for (const int32_t x : {box.min.x, box.max.x}) {
    if (a.x == x && b.x == x) visit(Seam{Axis::kX, x});
  }
  for (const int32_t y : {box.min.y, box.max.y}) {
    if (a.y == y && b.y == y) visit(Seam{Axis::kY, y});
  }
}

bool RunsAlongSides(const Polygon& polygon, const GridBox& box) {
  bool all = true;
  ForEachEdge(polygon, [&](const GridPoint& a, const GridPoint& b) {
    bool along = false;
    ForEachSideAlong(box, a, b, [&](const Seam&) { along = true; });
    all = all && along;
  });
  return all;
}

void AddTo(Tile* tile, Polygon part) {
  if (part.size() < 3) return;
  if (RunsAlongSides(part, tile->box)) {
    const double whole = (static_cast<double>(tile->box.max.x) - tile->box.min.x) *
                         (static_cast<double>(tile->box.max.y) - tile->box.min.y);
    tile->around += static_cast<int>(std::lround(AreaOf(std::span(&part, 1)) / whole));
  } else {
    tile->polygons.push_back(std::move(part));
  }
}

std::pair<Tile, Tile> Divided(const Tile& tile, const Seam& seam) {
  std::pair<Tile, Tile> halves = {{tile.box, tile.around, {}}, {tile.box, tile.around, {}}};
  (seam.axis == Axis::kX ? halves.first.box.max.x : halves.first.box.max.y) = seam.at;
  (seam.axis == Axis::kX ? halves.second.box.min.x : halves.second.box.min.y) = seam.at;
  for (const Polygon& polygon : tile.polygons) {
    AddTo(&halves.first, OnOneSide(polygon, seam, true));
    AddTo(&halves.second, OnOneSide(polygon, seam, false));
  }
  return halves;
}

// In the widest gap between corners near the middle, where few edges are likely to run along it. Of
// many corners a sample tells enough.
Seam SeamAcross(const Tile& tile) {
  Seam seam;
  seam.axis = tile.box.IsWide() ? Axis::kX : Axis::kY;
  constexpr size_t kSample = 4096;
  const size_t every = CornerCount(tile.polygons) / kSample + 1;
  std::vector<int32_t> places;
  size_t corner = 0;
  for (const Polygon& polygon : tile.polygons) {
    for (const GridPoint& p : polygon) {
      if (corner++ % every == 0) places.push_back(Along(seam.axis, p));
    }
  }
  std::ranges::sort(places);
  const size_t first = places.size() * 2 / 5, last = places.size() * 3 / 5;
  int64_t widest = -1;
  for (size_t i = first; i < last; ++i) {
    const int64_t gap = int64_t{places[i + 1]} - places[i];
    if (gap <= widest) continue;
    widest = gap;
    seam.at = static_cast<int32_t>(places[i] + gap / 2);
  }
  return seam;
}

bool IsWithin(const GridBox& box, const Seam& seam) {
  return Along(seam.axis, box.min) < seam.at && seam.at < Along(seam.axis, box.max);
}

void Divide(Tile tile, size_t most_corners, std::vector<Tile>* tiles) {
  const size_t corners = CornerCount(tile.polygons);
  if (corners > most_corners) {
    if (const Seam seam = SeamAcross(tile); IsWithin(tile.box, seam)) {
      std::pair<Tile, Tile> halves = Divided(tile, seam);
      const size_t more =
          std::max(CornerCount(halves.first.polygons), CornerCount(halves.second.polygons));
      // Long edges side by side get shorter, but not fewer.
      if (more < corners - corners / 8) {
        tile = {};
        Divide(std::move(halves.first), most_corners, tiles);
        Divide(std::move(halves.second), most_corners, tiles);
        return;
      }
    }
  }
  tiles->push_back(std::move(tile));
}

// A tile's outlines, within its box. The library now and then loses or adds a part of a tangle;
// seen from another side, it rarely does: a tile is looked at until two sides agree on its area.
class TileUnion {
 public:
  TileUnion(const Tile& tile, const TilingRule& rule) : tile_(tile), rule_(rule) {}

  std::vector<Polygon> Outlines() const {
    if (tile_.polygons.empty()) {
      if (!IsFilled(tile_.around, rule_.fill)) return {};
      return {CornersOf(tile_.box)};
    }
    const std::vector<Polygon> polygons = Framed();
    std::array<Seen, kSides> seen;
    for (int i = 0; i < kSides; ++i) {
      Seen& now = seen[static_cast<size_t>(i)];
      now = SeenFrom((rule_.side + i) % kSides, polygons);
      for (int before = 0; before < i; ++before) {
        Seen& other = seen[static_cast<size_t>(before)];
        if (std::fabs(other.area - now.area) <= std::min(other.slack, now.slack)) {
          return std::move(other.outlines);
        }
      }
    }
    return std::move(seen[0].outlines);
  }

 private:
  struct Seen {
    std::vector<Polygon> outlines;
    double area = 0, slack = 0;  // what rounding makes of it
  };

  // No more than half of the corners' number can be undone by the polygons.
  std::vector<Polygon> Framed() const {
    const int most = static_cast<int>(CornerCount(tile_.polygons) / 2);
    return WithFrames(tile_.polygons, tile_.box, std::clamp(tile_.around, -most, most));
  }

  Seen SeenFrom(int side, const std::vector<Polygon>& polygons) const {
    Seen seen;
    for (const Polygon& outline : UnionFrom(side, polygons, rule_.fill)) {
      // Beyond the box there are but frames.
      Polygon within;
      for (const GridPoint& p : outline) {
        const GridPoint held = {std::clamp(p.x, tile_.box.min.x, tile_.box.max.x),
                                std::clamp(p.y, tile_.box.min.y, tile_.box.max.y)};
        if (within.empty() || !(within.back() == held)) within.push_back(held);
      }
      ForEachEdge(within, [&](const GridPoint& a, const GridPoint& b) {
        seen.slack +=
            std::fabs(static_cast<double>(b.x) - a.x) + std::fabs(static_cast<double>(b.y) - a.y);
      });
      seen.outlines.push_back(std::move(within));
    }
    seen.area = AreaOf(seen.outlines);
    return seen;
  }

  const Tile& tile_;
  const TilingRule& rule_;
};

// Puts the outlines of tiles together. Where two tiles are both filled along a seam, the edges of
// one run against those of the other, and neither is an outline.
class Stitcher {
 public:
  explicit Stitcher(const GridBox& all) : all_(all) {}

  void Add(const GridBox& tile, Polygon outline) {
    const auto on_seam = [&](size_t i) {
      return PutOnSeam(tile, outline[i], outline[i + 1 < outline.size() ? i + 1 : 0]);
    };
    std::vector<bool> is_on_seam;
    for (size_t i = 0; i < outline.size(); ++i) is_on_seam.push_back(on_seam(i));
    const auto first = std::ranges::find(is_on_seam, true);
    if (first == is_on_seam.end()) {
      whole_.push_back(std::move(outline));
      return;
    }
    // From after the first edge along a seam, once around.
    const auto start = static_cast<size_t>(first - is_on_seam.begin());
    Polygon chain;
    for (size_t n = 1; n <= outline.size(); ++n) {
      const size_t i = (start + n) % outline.size();
      chain.push_back(outline[i]);
      if (!is_on_seam[i]) continue;
      if (chain.size() > 1) chains_.push_back(std::move(chain));
      chain.clear();
    }
  }

  std::vector<Polygon> Outlines() && {
    AddSeams();
    for (size_t i = 0; i < chains_.size(); ++i) by_start_.push_back(i);
    std::ranges::stable_sort(by_start_, [&](size_t a, size_t b) {
      return IsBefore(chains_[a].front(), chains_[b].front());
    });
    is_used_.assign(chains_.size(), false);
    for (size_t i = 0; i < chains_.size(); ++i) {
      if (!is_used_[i]) whole_.push_back(Joined(i));
    }
    return std::move(whole_);
  }

 private:
  // Where the edges along a seam begin and end, with how many more go upwards, or to the right,
  // from there on.
  struct Step {
    int32_t at;
    int more;
  };

  static bool IsBefore(const GridPoint& a, const GridPoint& b) {
    return a.x != b.x ? a.x < b.x : a.y < b.y;
  }

  bool PutOnSeam(const GridBox& tile, const GridPoint& a, const GridPoint& b) {
    bool found = false;
    ForEachSideAlong(tile, a, b, [&](const Seam& seam) {
      if (found || !IsWithin(all_, seam)) return;
      found = true;
      const Axis along = seam.axis == Axis::kX ? Axis::kY : Axis::kX;
      const int32_t from = Along(along, a), to = Along(along, b);
      const int way = to > from ? 1 : -1;
      std::vector<Step>& steps = seams_[seam];
      steps.push_back({std::min(from, to), way});
      steps.push_back({std::max(from, to), -way});
    });
    return found;
  }

  // What is left of the edges along seams.
  void AddSeams() {
    for (auto& each : seams_) {
      const Seam& seam = each.first;
      std::vector<Step>& steps = each.second;
      std::ranges::stable_sort(steps, {}, &Step::at);
      const auto point = [&](int32_t at) {
        return seam.axis == Axis::kX ? GridPoint{seam.at, at} : GridPoint{at, seam.at};
      };
      int ways = 0;
      for (size_t i = 0; i + 1 < steps.size(); ++i) {
        ways += steps[i].more;
        if (steps[i].at == steps[i + 1].at) continue;
        Polygon edge = {point(steps[i].at), point(steps[i + 1].at)};
        if (ways < 0) std::ranges::reverse(edge);
        for (int n = 0; n < std::abs(ways); ++n) chains_.push_back(edge);
      }
    }
  }

  // How far to the left a way turns, in steps that grow with the angle: 0 straight back on the
  // right, 4 straight back on the left.
  static double TurnOf(const GridPoint& before, const GridPoint& at, const GridPoint& after) {
    const double x0 = static_cast<double>(at.x) - before.x,
                 y0 = static_cast<double>(at.y) - before.y;
    const double x1 = static_cast<double>(after.x) - at.x, y1 = static_cast<double>(after.y) - at.y;
    const double ahead = x0 * x1 + y0 * y1, left = x0 * y1 - y0 * x1;
    const double share = left / (std::fabs(ahead) + std::fabs(left));
    if (ahead >= 0) return 2 + share;
    return left < 0 ? -share : 4 - share;
  }

  // The outline that a chain belongs to. Where several go on from a point, the one that keeps to
  // the left goes around the same area.
  Polygon Joined(size_t first) {
    Polygon outline;
    for (size_t now = first;;) {
      is_used_[now] = true;
      const Polygon& chain = chains_[now];
      outline.insert(outline.end(), chain.begin(), chain.end() - 1);
      const GridPoint& end = chain.back();
      size_t next = chains_.size();
      double most_left = -1;
      const auto consider = [&](size_t i) {
        const double turn = TurnOf(chain[chain.size() - 2], end, chains_[i][1]);
        if (turn <= most_left) return;
        most_left = turn;
        next = i;
      };
      if (end == chains_[first].front()) consider(first);
      auto it = std::ranges::lower_bound(by_start_, end, IsBefore,
                                         [&](size_t i) { return chains_[i].front(); });
      for (; it != by_start_.end() && chains_[*it].front() == end; ++it) {
        if (!is_used_[*it]) consider(*it);
      }
      if (next == chains_.size()) outline.push_back(end);
      if (next == chains_.size() || next == first) return outline;
      now = next;
    }
  }

  GridBox all_;
  std::vector<Polygon> whole_;   // closed outlines
  std::vector<Polygon> chains_;  // open ones, from seam to seam
  std::map<Seam, std::vector<Step>> seams_;
  std::vector<size_t> by_start_;
  std::vector<bool> is_used_;
};

}  // namespace

bool NeedsTiles(const std::vector<Polygon>& polygons, const TilingRule& rule) {
  return CornerCount(polygons) > rule.most_at_once;
}

std::vector<Polygon> TiledUnion(const std::vector<Polygon>& polygons, const GridBox& box,
                                const TilingRule& rule) {
  if (!NeedsTiles(polygons, rule)) {
    return UnionFrom(rule.side, WithFrames(polygons, box, rule.around), rule.fill);
  }
  const GridBox all = Grown(box, kApart);
  std::vector<Tile> tiles;
  Divide({all, rule.around, polygons}, rule.most_in_tile, &tiles);
  std::vector<std::vector<Polygon>> outlines(tiles.size());
  ForEachInParallel(tiles.size(),
                    [&](size_t i) { outlines[i] = TileUnion(tiles[i], rule).Outlines(); });
  Stitcher stitcher(all);
  for (size_t i = 0; i < tiles.size(); ++i) {
    for (Polygon& outline : outlines[i]) stitcher.Add(tiles[i].box, std::move(outline));
  }
  return std::move(stitcher).Outlines();
}

}  // namespace kerno
