// From outlines along chords back to the curves that the chords stand for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "drawing/chord_grid.h"
#include "drawing/polygon_union.h"

namespace kerno {

struct TracedOutline {
  Path path;
  std::vector<uint32_t> sources;  // the paths of which parts are in it; some may stand here twice
};

// Finds the chords of some paths along which the edges of an outline run. Grid and paths must
// outlive it; the paths are sorted.
class OutlineTracer {
 public:
  OutlineTracer(const ChordGrid& grid, const std::vector<size_t>& paths);

  // The outline as parts of the grid's pieces. Where a part of a piece ends at another one, both
  // end at the crossing of their curves. No segments for an outline without area.
  TracedOutline Trace(const Polygon& outline) const;

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
  const std::vector<size_t>& paths_;
  // A hash table of the paths' chords by where they begin.
  struct Entry {
    uint32_t chord, next;
  };
  std::vector<uint32_t> first_;
  std::vector<Entry> entries_;
};

}  // namespace kerno
