// What a cutter would stumble over.
#pragma once

#include <cstddef>
#include <span>

#include "drawing/chord_grid.h"
#include "drawing/path.h"

namespace kerno {

struct PathFaults {
  size_t open = 0;           // paths that are not closed
  size_t crossing = 0;       // pairs of paths that cross
  size_t touching = 0;       // pairs that touch and do not cross
  size_t self_crossing = 0;  // paths that cross themselves
  size_t self_touching = 0;  // paths that touch themselves and do not cross
};

// Looks at chords that stay within a quarter of the `tolerance` (above 0) of the paths: what comes
// closer than that may count either way. The time grows little faster than the number of chords.
PathFaults CheckPaths(std::span<const Path> paths, double tolerance);
// The same for paths that lie on a grid already; its chords decide what is close.
PathFaults CheckPaths(std::span<const Path> paths, const ChordGrid& grid);

}  // namespace kerno
