// The contour list of the outline engine.
#pragma once

#include <cstdint>
#include <vector>

#include "drawing/geometry.h"

namespace kerno {

// All points of all contours, contour after contour; counts holds how many points belong to each.
// Every contour is closed: its last point equals its first. y points up until the block is placed,
// down afterwards.
struct GlyphContours {
  std::vector<P2> points;
  std::vector<uint32_t> counts;
};

}  // namespace kerno
