// A path taken apart at its corners.
#pragma once

#include <cstddef>
#include <vector>

#include "drawing/segment.h"
#include "drawing/tangent_arcs.h"

namespace kerno {

// A part of a path without corners: one line or arc of its own, or curves one after the other.
struct Stretch {
  size_t begin = 0, end = 0;     // its pieces among those of SmoothStretches
  Heading first, last;           // its ends
  bool curved = false;           // curves, not a line or an arc
  bool starts_at_corner = true;  // or at the path's own start
  bool ends_at_corner = true;
  bool is_loop = false;  // a closed path without corners
};

struct SmoothStretches {
  std::vector<Piece> pieces;
  std::vector<Stretch> stretches;
};

// Takes a path apart where it turns by more than a degree at once. A bend sharper than `size` is a
// corner, too; the pieces beside it end a little before and after it, the stretches in it. A closed
// path without corners is one stretch; one with corners starts at one of them, or beside a line or
// an arc. Where stretches meet without a corner, both have the direction of the line or arc there.
// Pieces of no length are left out. With kCurve each curve is a stretch of its own.
enum class StretchRule { kSmooth, kCurve };
SmoothStretches StretchesOf(const Path& path, double size, StretchRule rule);

}  // namespace kerno
