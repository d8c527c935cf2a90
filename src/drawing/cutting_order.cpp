#include "drawing/cutting_order.h"

#include <algorithm>
#include <cstdint>

#include "base/stop.h"
#include "drawing/chord_grid.h"

namespace kerno {
namespace {

constexpr size_t kNothing = SIZE_MAX;
// How far ahead the nearest contour within the same one is sought.
constexpr size_t kLookAhead = 8;

class CutPlanner {
 public:
  CutPlanner(std::span<const Path> paths, const ChordGrid& grid, const P2& tool)
      : paths_(paths), tool_(tool), grid_(grid), nodes_(paths.size()) {}

  std::vector<CutStep> Plan(CutOrder order) {
    Nest();
    for (size_t i = 0; i < paths_.size(); ++i) {
      if (order == CutOrder::kText) {
        steps_.push_back(StepOf(i));
      } else if (nodes_[i].parent == kNothing) {
        Follow(i);
      }
    }
    return std::move(steps_);
  }

 private:
  struct Node {
    size_t parent = kNothing;  // the smallest contour around it
    size_t depth = 0;
    double twice_area = 0;
    bool is_hole = false;
    std::vector<size_t> inside;  // the contours of which it is the parent
  };

  bool IsContour(size_t path) const { return paths_[path].closed && grid_.HasChords(path); }

  void Nest() {
    std::vector<GridBox> boxes;
    for (size_t i = 0; i < paths_.size(); ++i) {
      boxes.push_back(grid_.BoxOf(i));
      nodes_[i].twice_area = grid_.TwiceArea(i);
    }
    const BoxTree tree(std::move(boxes));
    for (size_t i = 0; i < paths_.size(); ++i) {
      if (!IsContour(i)) continue;
      StopIfAsked();
      Node& node = nodes_[i];
      int winding = node.twice_area < 0 ? -1 : 1;
      tree.ForEachNear(grid_.BoxOf(i), [&](size_t other) {
        if (!IsAround(other, i)) return;
        ++node.depth;
        winding += nodes_[other].twice_area < 0 ? -1 : 1;
        if (node.parent == kNothing || AreaOf(other) < AreaOf(node.parent)) node.parent = other;
      });
      node.is_hole = winding == 0;
    }
    for (size_t i = 0; i < paths_.size(); ++i) {
      if (nodes_[i].parent != kNothing) nodes_[nodes_[i].parent].inside.push_back(i);
    }
    for (size_t i = 0; i < paths_.size(); ++i) SortInside(i);
  }

  double AreaOf(size_t path) const { return std::fabs(nodes_[path].twice_area); }

  // Three points decide, as one may lie on the other contour.
  bool IsAround(size_t outer, size_t inner) const {
    if (outer == inner || !IsContour(outer) || !(AreaOf(outer) > AreaOf(inner)) ||
        !grid_.BoxOf(outer).Holds(grid_.BoxOf(inner))) {
      return false;
    }
    const size_t first = grid_.ChordsBegin(inner);
    const size_t count = grid_.ChordsBegin(inner + 1) - first;
    int votes = 0;
    for (const size_t at : {size_t{0}, count / 3, 2 * count / 3}) {
      votes += grid_.Winding(outer, grid_.Chords()[first + at].from) != 0 ? 1 : 0;
    }
    return votes >= 2;
  }

  // Along the longer side: from left to right or from top to bottom.
  void SortInside(size_t path) {
    const GridBox& box = grid_.BoxOf(path);
    const bool is_wide = box.IsWide();
    const auto place = [&](size_t i) {
      return is_wide ? grid_.BoxOf(i).min.x : -grid_.BoxOf(i).max.y;
    };
    std::ranges::stable_sort(nodes_[path].inside,
                             [&](size_t a, size_t b) { return place(a) < place(b); });
  }

  // A contour after all that is inside it. Contours nest a few deep.
  void Follow(size_t path) {
    StopIfAsked();
    std::vector<size_t> left = nodes_[path].inside;
    while (!left.empty()) {
      const size_t end = std::min(kLookAhead, left.size());
      size_t best = 0;
      double nearest = HUGE_VAL;
      for (size_t i = 0; i < end; ++i) {
        const double way = NearestStart(left[i]).distance;
        if (way < nearest) nearest = way, best = i;
      }
      const size_t next = left[best];
      left.erase(left.begin() + static_cast<std::ptrdiff_t>(best));
      Follow(next);
    }
    CutStep step = StepOf(path);
    const std::vector<Segment>& segments = paths_[path].segments;
    if (IsContour(path)) {
      const size_t end = NearestStart(path).segment;
      step.first_segment = step.reversed ? segments.size() - 1 - end : (end + 1) % segments.size();
      tool_ = segments[end].end;
    } else if (!segments.empty()) {
      tool_ = segments.back().end;
    }
    steps_.push_back(step);
  }

  CutStep StepOf(size_t path) const {
    const Node& node = nodes_[path];
    const bool turn = IsContour(path) && (node.twice_area > 0) == node.is_hole;
    return {path, node.depth, turn, 0};
  }

  struct Start {
    size_t segment;  // at whose end
    double distance;
  };

  Start NearestStart(size_t path) const {
    Start best = {0, HUGE_VAL};
    const std::vector<Segment>& segments = paths_[path].segments;
    for (size_t i = 0; i < segments.size(); ++i) {
      const double distance = Length(segments[i].end - tool_);
      if (distance < best.distance) best = {i, distance};
    }
    return best;
  }

  std::span<const Path> paths_;
  P2 tool_;
  const ChordGrid& grid_;
  std::vector<Node> nodes_;
  std::vector<CutStep> steps_;
};

}  // namespace

std::vector<CutStep> OrderForCutting(std::span<const Path> paths, double tolerance, CutOrder order,
                                     const P2& tool) {
  const ChordGrid grid(paths, tolerance, ChordGrid::Closing::kAll);
  return OrderForCutting(paths, grid, order, tool);
}

std::vector<CutStep> OrderForCutting(std::span<const Path> paths, const ChordGrid& grid,
                                     CutOrder order, const P2& tool) {
  return CutPlanner(paths, grid, tool).Plan(order);
}

Path PathOf(const Path& path, const CutStep& step) {
  Path result = step.reversed ? Reversed(path) : path;
  if (step.first_segment > 0) {
    result.start = result.segments[step.first_segment - 1].end;
    std::rotate(result.segments.begin(),
                result.segments.begin() + static_cast<std::ptrdiff_t>(step.first_segment),
                result.segments.end());
  }
  return result;
}

}  // namespace kerno
