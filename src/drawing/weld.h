// Overlapping outlines as one.
#pragma once

#include <cstddef>
#include <limits>
#include <span>
#include <vector>

#include "drawing/path.h"
#include "drawing/polygon_union.h"

namespace kerno {

// An outline out of several, or one that came through as it was.
constexpr size_t kNewOutline = std::numeric_limits<size_t>::max();

struct WeldedPath {
  Path path;
  size_t input = kNewOutline;  // the path that this one is
  bool reversed = false;       // and whether it runs the other way now
};

struct WeldResult {
  std::vector<WeldedPath> paths;  // outer outlines counter-clockwise, counters clockwise
  std::vector<bool> vanished;     // of each input path: nothing of it is part of an outline
};

// The outlines of what the paths fill together; the non-zero rule fills what any number of them go
// around, counted with their directions. An open path counts as closed.
//
// - A path that touches neither another one nor itself comes back as it was, but for its direction,
// or
//   not at all where both of its sides are filled.
// - Where paths touch or cross, the result consists of the parts of their own curves between the
//   crossings; these are exact crossings of the curves, not of chords. Overlaps and gaps that are
//   narrower than a quarter of the `tolerance` (above 0) may count as either.
// - Paths without area, repeated points and coordinates that are not finite leave no trace.
//
// The result is the same on every platform.
WeldResult Weld(std::span<const Path> paths, double tolerance);

// What is outline and what is nothing.
struct UnionRule {
  FillRule fill = FillRule::kNonZero;
  int around = 0;       // how often others go around the whole plane already
  double thinnest = 0;  // outlines around less than a strip of this width are left out
};

// What both Weld and offsets are made of.
WeldResult UnionOf(std::span<const Path> paths, double tolerance, const UnionRule& rule);

}  // namespace kerno
