// From the paths of glyphs to shapes that a machine cuts.
#pragma once

#include <cstddef>
#include <vector>

#include "app/cut.h"
#include "drawing/check_paths.h"

namespace kerno {

// What the user is told of a shape, once for each place of it.
struct ShapeNotes {
  size_t crossing = 0;  // paths that cross themselves or another one
  size_t touching = 0;  // that touch, or run along, themselves or another one
  size_t vanished = 0;  // contours that an inward offset left nothing of
};

// Each path of a pair counts.
void Count(const PathFaults& faults, ShapeNotes* notes);

// Whether shapes of the same paths are the same for both jobs.
bool MakeSameShapes(const CutJob& one, const CutJob& other);

// Welds, offsets, fits and orders outlines as the job says. `paths` are in the drawing's unit.
Shape ShapeOfOutlines(std::vector<Path> paths, const CutJob& job, ShapeNotes* notes);

// Strokes cross and touch as they like, and are neither inside nor outside of each other.
Shape ShapeOfStrokes(std::vector<Path> paths, const CutJob& job);

}  // namespace kerno
