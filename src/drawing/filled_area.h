// The area that paths fill by how often they go around, for comparison with outlines of it: the
// polygon library can lose or add a part and tell nothing.
#pragma once

#include <cstddef>
#include <span>

#include "drawing/chord_grid.h"
#include "drawing/weld.h"

namespace kerno {

// Two chords with points in common, as ForEachContact visits them.
struct ChordContact {
  size_t a, b;
};

// Areas in square units of the grid.
struct FilledArea {
  double area = 0;   // inside outlines, without their counters
  double slack = 0;  // what the rounding of crossings may make of it
};

// Measures clusters of paths of one grid, which must outlive it and whose paths are closed.
//
// A part of a path between two crossings is outline where one of its sides is filled; windings tell
// which. No outline is put together, so that nothing but the crossings is shared with what does.
// The time grows little faster than the number of chords and crossings.
class FilledAreas {
 public:
  FilledAreas(const ChordGrid& grid, const UnionRule& rule);

  // Of the outlines that the paths of these contacts have part in; other paths only go around them.
  // The contacts are all contacts of their paths. What goes around the whole plane is outside of
  // all outlines, be it filled or not.
  FilledArea Of(std::span<const ChordContact> contacts) const;

 private:
  const ChordGrid& grid_;
  UnionRule rule_;
  BoxTree path_boxes_;
};

// Of outlines as the polygon library gives them, counters below 0.
double AreaOf(std::span<const Polygon> outlines);

}  // namespace kerno
