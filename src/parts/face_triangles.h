// Faces divided into triangles.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "drawing/geometry.h"

namespace kerno {

// The triangles of a face, each three indices of the loop's own, in the loop's direction.
//
// The loop lies in a plane, more or less; it may be concave, touch itself at vertices and repeat
// points, and where it surrounds two areas in opposite directions, both are kept, while an area
// that runs against the loop around it is a hole. The triangles' areas add up to the loop's. A loop
// without area, one with a coordinate that is not finite, or an index outside `points` gives none.
// A loop that crosses itself gives triangles of its vertices, without promises about their areas.
// Time grows nearly linearly.
std::vector<std::array<int32_t, 3>> FaceTriangles(std::span<const P3> points,
                                                  std::span<const int32_t> loop);

}  // namespace kerno
