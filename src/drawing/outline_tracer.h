// From outlines along chords back to the curves that the chords stand for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "drawing/chord_grid.h"
#include "drawing/polygon_union.h"

namespace kerno {

// Finds the chords of a grid along which the edges of an outline run. The grid must outlive it.
class OutlineTracer {
 public:
  explicit OutlineTracer(const ChordGrid& grid);

  // The outline as parts of the grid's pieces. Where a part of a piece ends at another one, both
  // end at the crossing of their curves. No segments for an outline without area. The paths of
  // which parts were used are no longer marked in `unused`.
  Path Trace(const Polygon& outline, std::vector<bool>* unused) const;

 private:
  // An edge of the outline or several in a row: the part of a piece that they run along, backwards
  // when `from` is the larger. `piece` is kNoPiece where no chord is near.
  struct Run {
    uint32_t piece, path;
    double from, to;
    GridPoint start, end;
  };

  Run RunAlong(const GridPoint& from, const GridPoint& to, const Run* before) const;
  Run PartOf(size_t chord, const GridPoint& from, const GridPoint& to) const;
  bool IsAlong(size_t chord, const GridPoint& from, const GridPoint& to) const;
  std::vector<Run> RunsOf(const Polygon& outline) const;
  bool GoesOn(const Run& before, const Run& after) const;
  bool MeetAtEnds(const Run& before, const Run& after) const;
  P2 Joint(Run* before, Run* after) const;
  bool FindCrossing(const Run& before, const Run& after, double* t_before, double* t_after) const;
  void AppendRun(const Run& run, const P2& start, const P2& end, Path* path) const;
  bool IsCorner(const GridPoint& p) const;

  template <class Visit>
  void ForEachChordFrom(const GridPoint& p, const Visit& visit) const;

  const ChordGrid& grid_;
  // A hash table of the chords by where they begin.
  std::vector<uint32_t> first_, next_;
};

}  // namespace kerno
