// What those who draw or write a part's elements have in common: their vertices, checked, and what
// circles and faces mean.
#pragma once

#include <cmath>
#include <cstdint>
#include <numbers>
#include <vector>

#include "parts/parts.h"

namespace kerno {

// Height of a text that says none, in model units: the usual lettering of drawings.
inline constexpr double kDefaultTextHeight = 2.5;

// The vertex of an index, or null where the pool has none (a part read from a damaged file).
inline const P3* VertexAt(const Parts& part, int32_t index) {
  return index >= 0 && static_cast<size_t>(index) < part.vertices.size()
             ? &part.vertices[static_cast<size_t>(index)]
             : nullptr;
}

inline bool IsFinite(const P3& p) {
  return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

// The direction from `centre` to `p` in degrees, counter-clockwise from the x axis, 0 up to 360.
inline double DirectionDegrees(const P3& centre, const P3& p) {
  const double degrees = std::atan2(p.y - centre.y, p.x - centre.x) * 180 / std::numbers::pi;
  return degrees < 0 ? degrees + 360 : degrees + 0.0;  // never -0
}

// A circle's vertices; `start` and `end` are null for a full circle.
struct CircleShape {
  const P3* centre = nullptr;  // null when the element cannot be drawn
  const P3* start = nullptr;   // the arc runs counter-clockwise from here
  const P3* end = nullptr;
};

inline CircleShape ShapeOf(const Parts& part, const CircleItem& circle) {
  CircleShape shape{.centre = VertexAt(part, circle.centre)};
  if (circle.first == -1 || circle.second == -1 || circle.first == circle.second) return shape;
  shape.start = VertexAt(part, circle.first);
  shape.end = VertexAt(part, circle.second);
  if (!shape.start || !shape.end) shape = {};
  return shape;
}

// The loop of a face without the repeated vertex that closes it; empty when a vertex is missing.
std::vector<int32_t> OpenLoop(const Parts& part, const FaceItem& face);

}  // namespace kerno
