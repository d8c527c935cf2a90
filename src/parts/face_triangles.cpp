#include "parts/face_triangles.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <optional>

#include "parts/ear_clipper.h"

namespace kerno {
namespace {

using internal::Cross;
using internal::PlanePoint;
using Loop = std::vector<PlanePoint>;

// The loop's points without immediate repetitions; empty when one cannot be used.
std::vector<int32_t> UsableLoop(std::span<const P3> points, std::span<const int32_t> loop) {
  std::vector<int32_t> usable;
  for (const int32_t index : loop) {
    if (index < 0 || static_cast<size_t>(index) >= points.size()) return {};
    const P3& p = points[static_cast<size_t>(index)];
    if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z)) return {};
    if (usable.empty() || !(points[static_cast<size_t>(usable.back())] == p)) {
      usable.push_back(index);
    }
  }
  while (usable.size() > 1 && points[static_cast<size_t>(usable.front())] ==
                                  points[static_cast<size_t>(usable.back())]) {
    usable.pop_back();
  }
  return usable;
}

// The axis that the loop's plane faces most. Magnitudes are added, so that areas of opposite
// directions do not cancel.
int FacingAxis(std::span<const P3> corners) {
  double facing[3] = {0, 0, 0};
  const P3 o = corners[0];
  for (size_t i = 2; i < corners.size(); ++i) {
    const P3 a = {corners[i - 1].x - o.x, corners[i - 1].y - o.y, corners[i - 1].z - o.z};
    const P3 b = {corners[i].x - o.x, corners[i].y - o.y, corners[i].z - o.z};
    facing[0] += std::fabs(a.y * b.z - a.z * b.y);
    facing[1] += std::fabs(a.z * b.x - a.x * b.z);
    facing[2] += std::fabs(a.x * b.y - a.y * b.x);
  }
  return facing[2] >= facing[0] && facing[2] >= facing[1] ? 2 : facing[0] >= facing[1] ? 0 : 1;
}

// The loop in its plane, scaled by a power of two to lie within one unit, so that products of huge
// or tiny coordinates stay numbers.
Loop Flatten(std::span<const P3> points, std::span<const int32_t> indices) {
  std::vector<P3> corners;
  double largest = 0;
  for (const int32_t index : indices) {
    const P3& p = points[static_cast<size_t>(index)];
    corners.push_back(p);
    largest = std::max({largest, std::fabs(p.x), std::fabs(p.y), std::fabs(p.z)});
  }
  int exponent = 0;
  std::frexp(largest, &exponent);
  for (P3& p : corners) {
    p = {std::ldexp(p.x, -exponent), std::ldexp(p.y, -exponent), std::ldexp(p.z, -exponent)};
  }
  const int axis = FacingAxis(corners);
  Loop loop;
  for (size_t i = 0; i < corners.size(); ++i) {
    const double xyz[] = {corners[i].x, corners[i].y, corners[i].z};
    loop.push_back({xyz[(axis + 1) % 3] + 0.0, xyz[(axis + 2) % 3] + 0.0, indices[i]});
  }
  return loop;
}

double SignedArea(const Loop& loop) {
  double twice = 0;
  for (size_t i = 2; i < loop.size(); ++i) twice += Cross(loop[0], loop[i - 1], loop[i]);
  return twice / 2;
}

// Gives every corner the number of its point, the same for corners that stand on one point.
std::vector<size_t> PointNumbers(const Loop& loop) {
  std::vector<size_t> order(loop.size());
  std::iota(order.begin(), order.end(), size_t{0});
  const auto key = [&](size_t i) { return std::pair(loop[i].x, loop[i].y); };
  std::sort(order.begin(), order.end(), [&](size_t a, size_t b) { return key(a) < key(b); });
  std::vector<size_t> numbers(loop.size());
  size_t number = 0;
  for (size_t i = 1; i < order.size(); ++i) {
    if (key(order[i]) != key(order[i - 1])) ++number;
    numbers[order[i]] = number;
  }
  return numbers;
}

// Cuts the loop where it returns to a point: loops that meet no point twice, those of less than
// three corners dropped.
std::vector<Loop> SplitAtRepeatedPoints(const Loop& loop) {
  constexpr size_t kNowhere = static_cast<size_t>(-1);
  const std::vector<size_t> numbers = PointNumbers(loop);
  std::vector<size_t> place(loop.size(), kNowhere);  // of a point in `open`
  std::vector<size_t> open;
  std::vector<Loop> loops;
  const auto close = [&](size_t from) {
    Loop closed;
    for (size_t i = from; i < open.size(); ++i) closed.push_back(loop[open[i]]);
    if (closed.size() >= 3) loops.push_back(std::move(closed));
  };
  for (size_t i = 0; i < loop.size(); ++i) {
    const size_t from = place[numbers[i]];
    if (from == kNowhere) {
      place[numbers[i]] = open.size();
      open.push_back(i);
      continue;
    }
    close(from);
    for (; open.size() > from + 1; open.pop_back()) place[numbers[open.back()]] = kNowhere;
  }
  close(0);
  return loops;
}

struct Box {
  double left, right, bottom, top;
  bool Within(const Box& o) const {
    return left >= o.left && right <= o.right && bottom >= o.bottom && top <= o.top;
  }
};

Box BoxOf(const Loop& loop) {
  Box box = {loop[0].x, loop[0].x, loop[0].y, loop[0].y};
  for (const PlanePoint& p : loop) {
    box = {std::min(box.left, p.x), std::max(box.right, p.x), std::min(box.bottom, p.y),
           std::max(box.top, p.y)};
  }
  return box;
}

// Whether the point lies inside the loop; nothing when it lies on it.
std::optional<bool> Surrounds(const Loop& loop, const PlanePoint& p) {
  bool inside = false;
  for (size_t i = 0; i < loop.size(); ++i) {
    const PlanePoint& a = loop[i];
    const PlanePoint& b = loop[(i + 1) % loop.size()];
    const double side = Cross(a, b, p);
    const bool between = std::min(a.x, b.x) <= p.x && p.x <= std::max(a.x, b.x) &&
                         std::min(a.y, b.y) <= p.y && p.y <= std::max(a.y, b.y);
    if (side == 0 && between) return std::nullopt;
    if ((a.y > p.y) != (b.y > p.y) && (side > 0) == (b.y > a.y)) inside = !inside;
  }
  return inside;
}

bool IsHoleOf(const Loop& inner, const Loop& outer) {
  for (const PlanePoint& p : inner) {
    if (const std::optional<bool> inside = Surrounds(outer, p)) return *inside;
  }
  return false;
}

// Whether one of the loops lies inside another one of the opposite direction.
bool HaveHoles(const std::vector<Loop>& loops) {
  std::vector<Box> boxes;
  std::vector<bool> positive;
  for (const Loop& loop : loops) {
    boxes.push_back(BoxOf(loop));
    positive.push_back(SignedArea(loop) > 0);
  }
  for (size_t i = 0; i < loops.size(); ++i) {
    for (size_t k = 0; k < loops.size(); ++k) {
      if (positive[i] == positive[k] || !boxes[i].Within(boxes[k])) continue;
      if (IsHoleOf(loops[i], loops[k])) return true;
    }
  }
  return false;
}

void AppendTriangles(Loop loop, std::vector<std::array<int32_t, 3>>* triangles) {
  const double area = SignedArea(loop);
  if (area == 0) return;
  if (area < 0) std::reverse(loop.begin(), loop.end());
  const size_t first = triangles->size();
  internal::ClipEars(loop, triangles);
  if (area > 0) return;
  for (size_t i = first; i < triangles->size(); ++i) {
    std::swap((*triangles)[i][0], (*triangles)[i][2]);
  }
}

}  // namespace

std::vector<std::array<int32_t, 3>> FaceTriangles(std::span<const P3> points,
                                                  std::span<const int32_t> loop) {
  std::vector<std::array<int32_t, 3>> triangles;
  const std::vector<int32_t> usable = UsableLoop(points, loop);
  if (usable.size() < 3) return triangles;
  const Loop whole = Flatten(points, usable);
  std::vector<Loop> loops = SplitAtRepeatedPoints(whole);
  // A hole hangs on the loop around it by the points that both share: clipped as one.
  if (loops.size() > 1 && HaveHoles(loops)) loops = {whole};
  for (Loop& simple : loops) AppendTriangles(std::move(simple), &triangles);
  return triangles;
}

}  // namespace kerno
