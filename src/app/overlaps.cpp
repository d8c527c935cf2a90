#include "app/overlaps.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <unordered_map>

namespace kerno {
namespace {

bool IsEmpty(const Box2& box) {
  return !(box.min.x <= box.max.x);
}

// Boxes by the cells of a grid that they touch; a cell is about as large as a common box.
class Grid {
 public:
  explicit Grid(const std::vector<Box2>& boxes) {
    double sum = 0;
    size_t count = 0;
    for (const Box2& box : boxes) {
      if (IsEmpty(box)) continue;
      sum += std::max(box.Width(), box.Height());
      ++count;
    }
    side_ = count > 0 && sum > 0 ? sum / static_cast<double>(count) : 1;
  }

  // Calls `meet` for every box put in before that shares a cell, then puts this one in.
  template <class Meet>
  void Put(size_t place, const Box2& box, const Meet& meet) {
    const int64_t left = Cell(box.min.x), right = Cell(box.max.x);
    const int64_t bottom = Cell(box.min.y), top = Cell(box.max.y);
    for (int64_t x = left; x <= right; ++x) {
      for (int64_t y = bottom; y <= top; ++y) {
        std::vector<size_t>& cell =
            cells_[static_cast<uint64_t>(x) * 0x9E3779B97F4A7C15u + static_cast<uint64_t>(y)];
        for (const size_t other : cell) meet(other);
        cell.push_back(place);
      }
    }
  }

 private:
  int64_t Cell(double value) const { return static_cast<int64_t>(std::floor(value / side_)); }

  double side_;
  std::unordered_map<uint64_t, std::vector<size_t>> cells_;
};

}  // namespace

std::vector<std::vector<size_t>> Overlapping(const std::vector<Box2>& boxes) {
  std::vector<size_t> parent(boxes.size());
  std::iota(parent.begin(), parent.end(), size_t{0});
  const auto root = [&](size_t i) {
    while (parent[i] != i) i = parent[i] = parent[parent[i]];
    return i;
  };
  Grid grid(boxes);
  for (size_t i = 0; i < boxes.size(); ++i) {
    if (IsEmpty(boxes[i])) continue;
    grid.Put(i, boxes[i], [&](size_t other) {
      if (!boxes[i].Overlaps(boxes[other])) return;
      const size_t a = root(i), b = root(other);
      parent[std::max(a, b)] = std::min(a, b);  // the first member is the root
    });
  }
  std::vector<std::vector<size_t>> groups;
  std::vector<size_t> group_of(boxes.size());
  for (size_t i = 0; i < boxes.size(); ++i) {
    if (IsEmpty(boxes[i])) continue;
    const size_t first = root(i);
    if (first == i) {
      group_of[i] = groups.size();
      groups.emplace_back();
    }
    groups[group_of[first]].push_back(i);
  }
  return groups;
}

std::vector<std::vector<size_t>> EachAlone(const std::vector<Box2>& boxes) {
  std::vector<std::vector<size_t>> groups;
  for (size_t i = 0; i < boxes.size(); ++i) {
    if (!IsEmpty(boxes[i])) groups.push_back({i});
  }
  return groups;
}

}  // namespace kerno
