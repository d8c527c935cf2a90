// Outlines as chains of segments that keep their curves. Plain doubles in their producer's unit; y
// points up unless its producer says otherwise.
#pragma once

#include <cstdint>
#include <vector>

#include "drawing/geometry.h"

namespace kerno {

enum class SegmentKind : uint8_t {
  kLine,       // straight to `end`
  kArc,        // along a circle to `end`, as `bulge` says
  kQuadratic,  // Bézier curve of second degree: control point `first`
  kCubic,      // Bézier curve of third degree: control points `first` and `second`
};

// One piece of a path; it begins where the piece before ends.
struct Segment {
  SegmentKind kind = SegmentKind::kLine;
  P2 end;
  P2 first = {}, second = {};
  // Of an arc: the tangent of a quarter of its angle, above 0 counter-clockwise where y points up;
  // 1 is half a circle.
  double bulge = 0;

  bool operator==(const Segment&) const = default;
};

// A chain of segments. The last segment of a closed path ends at its start.
struct Path {
  P2 start;
  std::vector<Segment> segments;
  bool closed = true;

  bool operator==(const Path&) const = default;
};

}  // namespace kerno
