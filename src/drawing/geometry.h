// Points and boxes. Plain doubles without a unit: coordinates are in whatever their producer uses.
#pragma once

#include <algorithm>
#include <limits>

namespace kerno {

struct P2 {
  double x = 0, y = 0;
};

struct P3 {
  double x = 0, y = 0, z = 0;
};

// Classic: neither less nor greater, so that 0.0 equals -0.0 and not-a-number equals everything; no
// tolerance, as vertices that differ in the last digit stay two in every file.
inline bool SameCoordinate(double a, double b) {
  return !(a < b) && !(a > b);
}

inline bool operator==(const P2& a, const P2& b) {
  return SameCoordinate(a.x, b.x) && SameCoordinate(a.y, b.y);
}
inline bool operator==(const P3& a, const P3& b) {
  return SameCoordinate(a.x, b.x) && SameCoordinate(a.y, b.y) && SameCoordinate(a.z, b.z);
}

// The sum first, then the half of it.
inline P2 Midpoint(const P2& a, const P2& b) {
  return {(a.x + b.x) * 0.5, (a.y + b.y) * 0.5};
}
inline P3 Midpoint(const P3& a, const P3& b) {
  return {(a.x + b.x) * 0.5, (a.y + b.y) * 0.5, (a.z + b.z) * 0.5};
}

// An axis-aligned box.
struct Extent3 {
  P3 min, max;
};

// Widens the box to hold the point; a coordinate that is not a number widens nothing.
inline void Include(Extent3* box, const P3& p) {
  box->min = {std::min(box->min.x, p.x), std::min(box->min.y, p.y), std::min(box->min.z, p.z)};
  box->max = {std::max(box->max.x, p.x), std::max(box->max.y, p.y), std::max(box->max.z, p.z)};
}

// The box of no point, from which Include gathers one.
inline constexpr double kFar = std::numeric_limits<double>::infinity();
inline constexpr Extent3 kEmptyExtent = {{kFar, kFar, kFar}, {-kFar, -kFar, -kFar}};

// A box that was gathered from kEmptyExtent on; an axis that no number reached becomes 0.
inline Extent3 GatheredExtent(Extent3 box) {
  for (double P3::*axis : {&P3::x, &P3::y, &P3::z}) {
    if (box.min.*axis > box.max.*axis) box.min.*axis = box.max.*axis = 0;
  }
  return box;
}

// The componentwise minimum and maximum of a list of points; zero for an empty list.
template <class Points>
Extent3 ExtentOf(const Points& points) {
  Extent3 box = kEmptyExtent;
  for (const P3& p : points) Include(&box, p);
  return GatheredExtent(box);
}

}  // namespace kerno
