#include "app/overlaps.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>

#include "base/stop.h"
#include "drawing/box_tree.h"

namespace kerno {
namespace {

bool IsEmpty(const Box2& box) {
  return !(box.min.x <= box.max.x);
}

// The boxes on a grid of whole numbers, no smaller than they are.
std::vector<GridBox> OnGrid(const std::vector<Box2>& boxes) {
  Box2 all;
  for (const Box2& box : boxes) Include(&all, box);
  constexpr double kReach = 1 << 30;
  const double size = std::max(all.Width(), all.Height());
  const double scale = size > 0 ? kReach / size : 1;
  const auto low = [&](double value) { return static_cast<int32_t>(std::floor(value * scale)); };
  const auto high = [&](double value) { return static_cast<int32_t>(std::ceil(value * scale)); };
  std::vector<GridBox> grid;
  grid.reserve(boxes.size());
  for (const Box2& box : boxes) {
    GridBox& cells = grid.emplace_back();
    if (IsEmpty(box)) continue;
    cells = {{low(box.min.x - all.min.x), low(box.min.y - all.min.y)},
             {high(box.max.x - all.min.x), high(box.max.y - all.min.y)}};
  }
  return grid;
}

}  // namespace

std::vector<std::vector<size_t>> Overlapping(const std::vector<Box2>& boxes) {
  std::vector<size_t> parent(boxes.size());
  std::iota(parent.begin(), parent.end(), size_t{0});
  const auto root = [&](size_t i) {
    while (parent[i] != i) i = parent[i] = parent[parent[i]];
    return i;
  };
  StopNowAndThen stop;
  BoxTree(OnGrid(boxes)).ForEachPair([&](size_t i, size_t j) {
    stop.Step();
    if (!boxes[i].Overlaps(boxes[j])) return;
    const size_t a = root(i), b = root(j);
    parent[std::max(a, b)] = std::min(a, b);  // the first member is the root
  });
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
