// A drawing for a machine as the parts model, for the formats that know no paths.
#pragma once

#include "drawing/drawing.h"
#include "export/drawing_style.h"
#include "parts/parts.h"

namespace kerno {

enum class ArcForm {
  kArcs,    // circles with two further vertices; boxes of the model hold their centres, too
  kChords,  // lines within the tolerance
};

// One part for each shape and layer. Curves become chords within `tolerance`. Coordinates are the
// drawing's, times `scale`.
PartsA PartsOf(const Drawing& drawing, const DrawingStyle& style, double tolerance, double scale,
               ArcForm arcs);

}  // namespace kerno
