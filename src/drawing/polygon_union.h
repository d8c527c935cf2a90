// The union of polygons.
#pragma once

#include <vector>

#include "drawing/chord_grid.h"

namespace kerno {

using Polygon = std::vector<GridPoint>;

// Which points are inside, by how often the polygons go around them counter-clockwise.
enum class FillRule {
  kNonZero,   // any number but 0
  kPositive,  // 1 and more
};

// The outlines of what is inside: outer ones counter-clockwise, those of holes clockwise. Corners
// where nothing turns stay.
std::vector<Polygon> UnionOf(const std::vector<Polygon>& polygons, FillRule rule);

}  // namespace kerno
