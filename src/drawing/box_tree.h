// Finds boxes that overlap in a sequence whose neighbours lie close together, as the chords of a
// path and the contours of a text do.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace kerno {

// Small enough that products of differences fit into 64 bits.
struct GridPoint {
  int32_t x = 0, y = 0;

  bool operator==(const GridPoint&) const = default;
};

// Empty until it holds a point.
struct GridBox {
  static constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
  GridPoint min = {kMost, kMost}, max = {-kMost, -kMost};

  bool Overlaps(const GridBox& other) const {
    return min.x <= other.max.x && other.min.x <= max.x && min.y <= other.max.y &&
           other.min.y <= max.y;
  }
  bool Holds(const GridBox& other) const {
    return min.x <= other.min.x && other.max.x <= max.x && min.y <= other.min.y &&
           other.max.y <= max.y;
  }
  bool IsWide() const { return int64_t{max.x} - min.x > int64_t{max.y} - min.y; }
};

inline void Include(GridBox* box, const GridBox& other) {
  box->min = {std::min(box->min.x, other.min.x), std::min(box->min.y, other.min.y)};
  box->max = {std::max(box->max.x, other.max.x), std::max(box->max.y, other.max.y)};
}

// Every level halves the one below: box i of it holds the boxes 2 i and 2 i + 1 there.
class BoxTree {
 public:
  // `ways` are marks of the boxes, if any: what stands in boxes next to each other that share a bit
  // of their marks, and in all those between them, has nothing in common but at common ends.
  explicit BoxTree(std::vector<GridBox> boxes, std::vector<uint8_t> ways = {}) {
    ways.resize(boxes.size());
    levels_.push_back({std::move(boxes), std::move(ways)});
    while (levels_.back().boxes.size() > 1) {
      const Level& below = levels_.back();
      const size_t size = (below.boxes.size() + 1) / 2;
      Level level;
      level.boxes.reserve(size);
      level.ways.reserve(size);
      for (size_t i = 0; i < below.boxes.size(); i += 2) {
        GridBox box = below.boxes[i];
        uint8_t way = below.ways[i];
        if (i + 1 < below.boxes.size()) {
          Include(&box, below.boxes[i + 1]);
          way &= below.ways[i + 1];
        }
        level.boxes.push_back(box);
        level.ways.push_back(way);
      }
      levels_.push_back(std::move(level));
    }
  }

  // Calls visit(i, j), i < j, for every two boxes that overlap, but for some whose marks tell that
  // their contents have nothing in common.
  template <class Visit>
  void ForEachPair(const Visit& visit) const {
    if (!levels_[0].boxes.empty()) Within(levels_.size() - 1, 0, visit);
  }

  // Calls visit(i) for every box from `first` to before `last` that overlaps with one.
  template <class Visit>
  void ForEachNear(const GridBox& box, size_t first, size_t last, const Visit& visit) const {
    if (first < last) Near(levels_.size() - 1, 0, box, first, last, visit);
  }
  template <class Visit>
  void ForEachNear(const GridBox& box, const Visit& visit) const {
    ForEachNear(box, 0, levels_[0].boxes.size(), visit);
  }

 private:
  template <class Visit>
  void Within(size_t level, size_t i, const Visit& visit) const {
    if (level == 0 || levels_[level].ways[i] != 0) return;
    const size_t left = 2 * i, right = left + 1;
    Within(level - 1, left, visit);
    if (right == levels_[level - 1].boxes.size()) return;
    Within(level - 1, right, visit);
    const std::vector<GridBox>& below = levels_[level - 1].boxes;
    if (below[left].Overlaps(below[right])) Between(level - 1, left, right, visit);
  }

  // Of two boxes i < j that overlap.
  template <class Visit>
  void Between(size_t level, size_t i, size_t j, const Visit& visit) const {
    if (i + 1 == j && (levels_[level].ways[i] & levels_[level].ways[j]) != 0) return;
    if (level == 0) {
      visit(i, j);
      return;
    }
    const std::vector<GridBox>& below = levels_[level - 1].boxes;
    const size_t a_end = 2 * i + 2, b_end = std::min(2 * j + 2, below.size());
    for (size_t a = 2 * i; a < a_end; ++a) {
      for (size_t b = 2 * j; b < b_end; ++b) {
        if (below[a].Overlaps(below[b])) Between(level - 1, a, b, visit);
      }
    }
  }

  template <class Visit>
  void Near(size_t level, size_t i, const GridBox& box, size_t first, size_t last,
            const Visit& visit) const {
    const size_t begin = i << level, end = (i + 1) << level;
    if (end <= first || last <= begin || !levels_[level].boxes[i].Overlaps(box)) return;
    if (level == 0) {
      visit(i);
      return;
    }
    Near(level - 1, 2 * i, box, first, last, visit);
    if (2 * i + 1 < levels_[level - 1].boxes.size())
      Near(level - 1, 2 * i + 1, box, first, last, visit);
  }

  struct Level {
    std::vector<GridBox> boxes;
    std::vector<uint8_t> ways;
  };
  std::vector<Level> levels_;
};

}  // namespace kerno
