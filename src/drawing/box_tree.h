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

// Box i of a level holds those from i times a number of the level below: four of the boxes
// themselves, two from there on.
class BoxTree {
 public:
  // `ways` are marks of the boxes, if any: what stands in boxes next to each other that share a bit
  // of their marks, and in all those between them, has nothing in common but at common ends.
  explicit BoxTree(std::vector<GridBox> boxes, std::vector<uint8_t> ways = {}) {
    ways.resize(boxes.size());
    levels_.push_back({std::move(boxes), std::move(ways)});
    while (levels_.back().boxes.size() > 1) levels_.push_back(Above(levels_.back(), Fan()));
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
  struct Level {
    std::vector<GridBox> boxes;
    std::vector<uint8_t> ways;
  };

  // Of the level to be built next.
  size_t Fan() const { return levels_.size() == 1 ? 4 : 2; }
  // The boxes below one, and all boxes of the lowest level in it.
  static size_t Fan(size_t level) { return level == 1 ? 4 : 2; }
  static size_t Span(size_t level) { return level == 0 ? 1 : size_t{2} << level; }

  static Level Above(const Level& below, size_t fan) {
    const size_t count = below.boxes.size();
    Level level;
    level.boxes.reserve(count / fan + 1);
    level.ways.reserve(count / fan + 1);
    for (size_t i = 0; i < count; i += fan) {
      GridBox box = below.boxes[i];
      uint8_t way = below.ways[i];
      for (size_t k = i + 1; k < std::min(i + fan, count); ++k) {
        Include(&box, below.boxes[k]);
        way &= below.ways[k];
      }
      level.boxes.push_back(box);
      level.ways.push_back(way);
    }
    return level;
  }

  // Pairs of the boxes below one.
  template <class Visit>
  void Within(size_t level, size_t i, const Visit& visit) const {
    if (level == 0 || levels_[level].ways[i] != 0) return;
    const Level& below = levels_[level - 1];
    const size_t begin = i * Fan(level), end = std::min(begin + Fan(level), below.boxes.size());
    for (size_t a = begin; a < end; ++a) {
      Within(level - 1, a, visit);
      for (size_t b = a + 1; b < end; ++b) Meet(level - 1, a, b, visit);
    }
  }

  // Pairs of the boxes in two, of which the second is after the first.
  template <class Visit>
  void Meet(size_t level, size_t i, size_t j, const Visit& visit) const {
    const Level& here = levels_[level];
    if (!here.boxes[i].Overlaps(here.boxes[j])) return;
    if (i + 1 == j && (here.ways[i] & here.ways[j]) != 0) return;
    if (level == 0) {
      visit(i, j);
      return;
    }
    const Level& below = levels_[level - 1];
    const size_t a_end = (i + 1) * Fan(level);
    const size_t b_end = std::min((j + 1) * Fan(level), below.boxes.size());
    for (size_t a = i * Fan(level); a < a_end; ++a) {
      if (!below.boxes[a].Overlaps(here.boxes[j])) continue;
      for (size_t b = j * Fan(level); b < b_end; ++b) Meet(level - 1, a, b, visit);
    }
  }

  template <class Visit>
  void Near(size_t level, size_t i, const GridBox& box, size_t first, size_t last,
            const Visit& visit) const {
    const size_t begin = i * Span(level), end = (i + 1) * Span(level);
    if (end <= first || last <= begin || !levels_[level].boxes[i].Overlaps(box)) return;
    if (level == 0) {
      visit(i);
      return;
    }
    const size_t child_end = std::min((i + 1) * Fan(level), levels_[level - 1].boxes.size());
    for (size_t child = i * Fan(level); child < child_end; ++child) {
      Near(level - 1, child, box, first, last, visit);
    }
  }

  std::vector<Level> levels_;
};

}  // namespace kerno
