#include "drawing/weld.h"

#include <algorithm>
#include <limits>
#include <numeric>

#include "base/stop.h"
#include "drawing/chord_grid.h"
#include "drawing/filled_area.h"
#include "drawing/measures.h"
#include "drawing/outline_tracer.h"
#include "drawing/tiled_union.h"

namespace kerno {
namespace {

// Chords stray from their curves by this share of the tolerance; where nothing touches even by
// coarse ones, by that.
constexpr double kChordShare = 0.125;
constexpr double kCoarseShare = 0.5;

// Sets that grow together.
class Clusters {
 public:
  explicit Clusters(size_t count) : parents_(count) {
    std::iota(parents_.begin(), parents_.end(), size_t{0});
  }
  size_t Of(size_t i) {
    while (parents_[i] != i) i = parents_[i] = parents_[parents_[i]];
    return i;
  }
  void Join(size_t i, size_t j) { parents_[std::max(Of(i), Of(j))] = std::min(Of(i), Of(j)); }

 private:
  std::vector<size_t> parents_;
};

bool IsFilled(int winding, FillRule rule) {
  return rule == FillRule::kNonZero ? winding != 0 : winding > 0;
}

class Welder {
 public:
  Welder(std::span<const Path> paths, double chord_tolerance, const UnionRule& rule)
      : paths_(paths),
        rule_(rule),
        grid_(paths, chord_tolerance, ChordGrid::Closing::kAll),
        clusters_(paths.size()),
        touched_(paths.size()),
        path_boxes_(PathBoxes()) {
    result_.vanished.assign(paths.size(), true);
    grid_.ForEachContact([&](size_t i, size_t j, Contact) {
      contacts_.push_back({i, j});
      const uint32_t a = grid_.Chords()[i].path, b = grid_.Chords()[j].path;
      touched_[a] = touched_[b] = true;
      clusters_.Join(a, b);
    });
  }

  bool FoundContacts() const { return std::ranges::find(touched_, true) != touched_.end(); }

  WeldResult Run() {
    std::vector<std::vector<size_t>> members(paths_.size());
    for (size_t i = 0; i < paths_.size(); ++i) {
      if (grid_.HasChords(i)) members[clusters_.Of(i)].push_back(i);
    }
    std::vector<std::vector<ChordContact>> contacts(paths_.size());
    for (const ChordContact& contact : contacts_) {
      contacts[clusters_.Of(grid_.Chords()[contact.a].path)].push_back(contact);
    }
    for (const std::vector<size_t>& cluster : members) {
      if (cluster.empty()) continue;
      StopIfAsked();
      if (touched_[cluster[0]]) {
        WeldCluster(cluster, contacts[clusters_.Of(cluster[0])]);
      } else {
        Keep(cluster[0]);
      }
    }
    return std::move(result_);
  }

 private:
  BoxTree PathBoxes() const {
    std::vector<GridBox> boxes;
    for (size_t i = 0; i < paths_.size(); ++i) boxes.push_back(grid_.BoxOf(i));
    return BoxTree(std::move(boxes));
  }

  // How often the other clusters go around one: as they do not touch it, the same everywhere on it.
  int WindingAround(size_t path) {
    const GridPoint& p = grid_.Chords()[grid_.ChordsBegin(path)].from;
    const size_t own = clusters_.Of(path);
    int winding = rule_.around;
    path_boxes_.ForEachNear({p, p}, [&](size_t other) {
      if (clusters_.Of(other) != own) winding += grid_.Winding(other, p);
    });
    return winding;
  }

  void Keep(size_t path) {
    const bool is_forwards = grid_.TwiceArea(path) > 0;
    const int outside = WindingAround(path);
    const bool fills_outside = IsFilled(outside, rule_.fill);
    const bool fills_inside = IsFilled(outside + (is_forwards ? 1 : -1), rule_.fill);
    if (fills_inside == fills_outside || IsThin(paths_[path])) return;
    result_.vanished[path] = false;
    const bool reversed = is_forwards != fills_inside;
    result_.paths.push_back({reversed ? Reversed(paths_[path]) : paths_[path], path, reversed});
  }

  void WeldCluster(const std::vector<size_t>& cluster, std::span<const ChordContact> contacts) {
    std::vector<Polygon> polygons;
    GridBox box;
    for (const size_t path : cluster) {
      Include(&box, grid_.BoxOf(path));
      Polygon& polygon = polygons.emplace_back();
      for (size_t i = grid_.ChordsBegin(path); i < grid_.ChordsBegin(path + 1); ++i) {
        polygon.push_back(grid_.Chords()[i].from);
      }
    }
    const OutlineTracer tracer(grid_, cluster);
    for (const Polygon& outline :
         CheckedUnion(polygons, box, WindingAround(cluster[0]), contacts)) {
      TracedOutline traced = tracer.Trace(outline);
      if (traced.path.segments.empty() || IsThin(traced.path)) continue;
      for (const uint32_t source : traced.sources) result_.vanished[source] = false;
      result_.paths.push_back({std::move(traced.path)});
    }
  }

  // The library now and then loses or adds a part of a tangle; seen from another side, it rarely
  // does. It goes through the plane from bottom to top, with all at hand that it meets on the way:
  // a line of text is looked at from its end. Of very many letters the slack of the area could hide
  // such a part: what is joined in tiles is taken from the side that fits the area best, unless one
  // fits closely. Where none fits at all, it goes to the library in one piece.
  std::vector<Polygon> CheckedUnion(const std::vector<Polygon>& polygons, const GridBox& box,
                                    int around, std::span<const ChordContact> contacts) const {
    const FilledArea wanted = FilledAreas(grid_, rule_).Of(contacts);
    constexpr int kSides = 4;
    constexpr double kShareOfTiles = 1.0 / 64;
    TilingRule tiling = {rule_.fill, around};
    std::vector<Polygon> nearest;
    double least = std::numeric_limits<double>::infinity();
    for (const bool in_tiles : {true, false}) {
      if (in_tiles && !NeedsTiles(polygons, tiling)) continue;
      if (least <= wanted.slack) break;
      if (!in_tiles) tiling.most_at_once = std::numeric_limits<size_t>::max();
      const double slack = wanted.slack * (in_tiles ? kShareOfTiles : 1);
      for (int i = 0; i < kSides; ++i) {
        StopIfAsked();  // the library itself cannot be stopped
        tiling.side = (i + (box.IsWide() ? 1 : 0)) % kSides;
        std::vector<Polygon> outlines = TiledUnion(polygons, box, tiling);
        std::erase_if(outlines, [&](const Polygon& outline) { return !IsInside(outline, box); });
        const double off = std::fabs(AreaOf(outlines) - wanted.area);
        if (off <= slack) return outlines;
        if (off >= least) continue;
        least = off;
        nearest = std::move(outlines);
      }
    }
    return nearest;
  }

  bool IsThin(const Path& path) const {
    return rule_.thinnest > 0 &&
           std::fabs(SignedAreaOf(path)) < 0.5 * LengthOf(path) * rule_.thinnest;
  }

  // Not an outline of the frames.
  static bool IsInside(const Polygon& outline, const GridBox& box) {
    return std::ranges::all_of(outline, [&](const GridPoint& p) {
      return p.x >= box.min.x && p.x <= box.max.x && p.y >= box.min.y && p.y <= box.max.y;
    });
  }

  std::span<const Path> paths_;
  UnionRule rule_;
  ChordGrid grid_;
  Clusters clusters_;
  std::vector<bool> touched_;
  BoxTree path_boxes_;
  std::vector<ChordContact> contacts_;
  WeldResult result_;
};

// Whether some of the first paths touch by coarse chords: where letters overlap, few are enough to
// tell. Of few paths it says nothing.
bool FirstOnesTouch(std::span<const Path> paths, double tolerance) {
  constexpr size_t kFirst = 4;
  if (paths.size() < 2 * kFirst) return false;
  const ChordGrid grid(paths.first(kFirst), tolerance * kCoarseShare, ChordGrid::Closing::kAll,
                       paths.subspan(kFirst));
  bool touch = false;
  grid.ForEachContact([&](size_t, size_t, Contact) { touch = true; });
  return touch;
}

}  // namespace

WeldResult UnionOf(std::span<const Path> paths, double tolerance, const UnionRule& rule) {
  if (FirstOnesTouch(paths, tolerance)) {
    return Welder(paths, tolerance * kChordShare, rule).Run();
  }
  Welder coarse(paths, tolerance * kCoarseShare, rule);
  if (!coarse.FoundContacts()) return coarse.Run();
  return Welder(paths, tolerance * kChordShare, rule).Run();
}

WeldResult Weld(std::span<const Path> paths, double tolerance) {
  return UnionOf(paths, tolerance, UnionRule{});
}

}  // namespace kerno
