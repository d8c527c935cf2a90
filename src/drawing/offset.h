// Outlines moved outwards or inwards, for the width of a beam or a blade.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "drawing/path.h"

namespace kerno {

struct OffsetResult {
  std::vector<Path>
      paths;            // of lines and arcs; outer outlines counter-clockwise, counters clockwise
  size_t vanished = 0;  // input paths of which nothing is left
};

// The outline of all points within `distance` of what the paths enclose; with a distance below 0,
// of the points farther than that from all outside. Outer corners become round. The paths are
// outlines as Weld returns them: they do not cross, and what they enclose is on their left.
//
// The result strays by at most `tolerance` (above 0), turns by no more than a degree where the true
// outline is smooth, and leaves specks out. It is the same on every platform.
OffsetResult Offset(std::span<const Path> paths, double distance, double tolerance);

}  // namespace kerno
