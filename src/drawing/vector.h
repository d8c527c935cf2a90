// Points taken as vectors of the plane. Only +, -, *, / and square roots, which come out the same
// on every platform.
#pragma once

#include <cmath>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "drawing/geometry.h"

namespace kerno {

// Rounded once. The C library of MinGW rounds twice where the compiler leaves the root to it, as it
// does without optimisation, and one root in some thousands differs.
inline double SquareRoot(double value) {
#if defined(__SSE2__)
  const __m128d whole = _mm_set_sd(value);
  return _mm_cvtsd_f64(_mm_sqrt_sd(whole, whole));
#else
  return std::sqrt(value);
#endif
}

inline P2 operator+(const P2& a, const P2& b) {
  return {a.x + b.x, a.y + b.y};
}
inline P2 operator-(const P2& a, const P2& b) {
  return {a.x - b.x, a.y - b.y};
}
inline P2 operator*(const P2& a, double factor) {
  return {a.x * factor, a.y * factor};
}

inline double Dot(const P2& a, const P2& b) {
  return a.x * b.x + a.y * b.y;
}
// Above 0 where b points to the left of a, y up.
inline double Cross(const P2& a, const P2& b) {
  return a.x * b.y - a.y * b.x;
}
inline double Length(const P2& a) {
  return SquareRoot(Dot(a, a));
}
// Of length 1; a vector without a length stays as it is.
inline P2 Unit(const P2& a) {
  const double length = Length(a);
  return length > 0 ? P2{a.x / length, a.y / length} : a;
}
// A quarter turn counter-clockwise, y up.
inline P2 TurnedLeft(const P2& a) {
  return {-a.y, a.x};
}
// Turned counter-clockwise by twice the angle whose tangent is given.
inline P2 TurnedByHalf(const P2& a, double tangent_of_half) {
  const double scale = 1 / (1 + tangent_of_half * tangent_of_half);
  const double cosine = (1 - tangent_of_half * tangent_of_half) * scale;
  const double sine = 2 * tangent_of_half * scale;
  return {a.x * cosine - a.y * sine, a.y * cosine + a.x * sine};
}

// An axis-aligned box; empty until it holds a point.
struct Box2 {
  P2 min = {HUGE_VAL, HUGE_VAL}, max = {-HUGE_VAL, -HUGE_VAL};

  bool Overlaps(const Box2& other) const {
    return min.x <= other.max.x && other.min.x <= max.x && min.y <= other.max.y &&
           other.min.y <= max.y;
  }
  bool Holds(const Box2& other) const {
    return min.x <= other.min.x && other.max.x <= max.x && min.y <= other.min.y &&
           other.max.y <= max.y;
  }
  double Width() const { return max.x > min.x ? max.x - min.x : 0; }
  double Height() const { return max.y > min.y ? max.y - min.y : 0; }
};

inline void Include(Box2* box, const P2& p) {
  box->min = {std::min(box->min.x, p.x), std::min(box->min.y, p.y)};
  box->max = {std::max(box->max.x, p.x), std::max(box->max.y, p.y)};
}
inline void Include(Box2* box, const Box2& other) {
  box->min = {std::min(box->min.x, other.min.x), std::min(box->min.y, other.min.y)};
  box->max = {std::max(box->max.x, other.max.x), std::max(box->max.y, other.max.y)};
}

}  // namespace kerno
