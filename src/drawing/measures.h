// Lengths, areas and boxes of paths. The same on every platform.
#pragma once

#include "drawing/path.h"
#include "drawing/vector.h"

namespace kerno {

// Along all segments, to about nine digits.
double LengthOf(const Path& path);

// Above 0 for a closed path that runs counter-clockwise, y up; an open path is closed by a line.
double SignedAreaOf(const Path& path);

// The smallest box that holds the path: of curves the curve itself, not its control points. Empty
// for a path without segments.
Box2 BoxOf(const Path& path);

}  // namespace kerno
