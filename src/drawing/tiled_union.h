// The union of very many polygons. The polygon library's time grows with the square of what hangs
// together, so that it gets a small part of the plane at a time here.
#pragma once

#include <cstddef>
#include <vector>

#include "drawing/box_tree.h"
#include "drawing/polygon_union.h"

namespace kerno {

struct TilingRule {
  FillRule fill = FillRule::kNonZero;
  int around = 0;  // how often others go around the whole box already
  int side = 0;    // by so many quarters of a turn the plane is turned for the library
  // So many corners go to the library at once, in one piece.
  size_t most_at_once = 30000;
  // Those of more polygons are divided until a tile has no more than this, where that helps.
  size_t most_in_tile = 600;
};

// Whether there are more corners than go to the library at once.
bool NeedsTiles(const std::vector<Polygon>& polygons, const TilingRule& rule);

// The outlines of what is inside, as UnionOf gives them, of polygons within `box`; where `around`
// fills the plane, an outline outside of the box comes with them. Outlines that go from a tile into
// another one have a corner more on the way, within a unit of the polygons' edges.
//
// The result does not depend on the number of processors.
std::vector<Polygon> TiledUnion(const std::vector<Polygon>& polygons, const GridBox& box,
                                const TilingRule& rule);

}  // namespace kerno
