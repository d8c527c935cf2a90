// Ear clipping of one loop in a plane, for face_triangles.cpp alone.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace kerno::internal {

struct PlanePoint {
  double x, y;
  int32_t index;  // what the triangles name the point by
};

// Twice the area of the triangle, positive when it runs counter-clockwise.
inline double Cross(const PlanePoint& a, const PlanePoint& b, const PlanePoint& c) {
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

// Appends the triangles of a counter-clockwise loop whose coordinates lie within one unit. It may
// touch itself; where it crosses itself, triangles overlap.
void ClipEars(const std::vector<PlanePoint>& loop, std::vector<std::array<int32_t, 3>>* triangles);

}  // namespace kerno::internal
