// Curves as circular arcs.
#pragma once

#include "drawing/path.h"

namespace kerno {

// The path with lines and arcs in place of its curves.
//
// - No point of the result is farther than `tolerance` (above 0) from the path, nor a point of the
//   path from the result.
// - Where the path turns by more than a degree at once, the result has a corner at that very point;
//   elsewhere it turns by less than a degree where its arcs meet each other and its lines.
// - The path's own lines and arcs come back as they are. A curve that is nearly straight becomes a
// line
//   where both promises allow it. An arc may stand for several curves, and is at most half a
//   circle.
// - Pieces without length are left out. A closed path stays closed; it may start elsewhere.
//
// A tolerance that is large for the path counts as a twentieth of the path's size, so that letters
// stay letters. The result is the same on every platform.
Path FitArcs(const Path& path, double tolerance);

// The same, with all ends of curves kept and their directions there met exactly: what touches the
// path at such a point, as lines beside letters do, does not cross the arcs. More arcs.
Path FitArcsKeepingNodes(const Path& path, double tolerance);

// The same as FitArcs, with arcs that do not turn at all where they meet each other and the path's
// lines: moved to one side, they still meet. More arcs.
Path FitTangentArcs(const Path& path, double tolerance);

}  // namespace kerno
