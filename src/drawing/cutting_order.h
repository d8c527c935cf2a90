// In which order, which way round and from where a cutter follows paths.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "drawing/chord_grid.h"
#include "drawing/path.h"

namespace kerno {

enum class CutOrder {
  kInsideFirst,  // what lies inside a contour before it; contours side by side as they come
  kText,         // as they come, each from its own start
};

// One path of the drawing on its way to the tool.
struct CutStep {
  size_t path;           // which one
  size_t depth;          // the number of contours around it
  bool reversed;         // it runs the other way than it came
  size_t first_segment;  // of the path (reversed, if it is): the one to start with
};

// All paths, each once. Closed ones run counter-clockwise, those around a hole clockwise; holes are
// told by the non-zero rule. With kInsideFirst each closed path starts at the end of a segment that
// is nearest to where the path before ended (the first one, to `tool`), and contours within the
// same contour follow each other along its longer side. Open paths stay as they are. Of paths that
// cross, the order is one of those possible.
std::vector<CutStep> OrderForCutting(std::span<const Path> paths, double tolerance, CutOrder order,
                                     const P2& tool = {});
// The same for paths that lie on a grid already, closed.
std::vector<CutStep> OrderForCutting(std::span<const Path> paths, const ChordGrid& grid,
                                     CutOrder order, const P2& tool = {});

// The path as the step says.
Path PathOf(const Path& path, const CutStep& step);

}  // namespace kerno
