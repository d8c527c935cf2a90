// The groups of an SVG drawing: in which order the parts stand, and what heads each group.
#pragma once

#include "export/svg_canvas.h"
#include "parts/parts.h"

namespace kerno {

// Whether something is drawn with a pen of width 0, which takes the canvas's hairline.
bool HasHairlines(const PartsA& model);

// Writes one group for each pen and layer, in order of first use. Faces cover what stands before
// them: a part with faces ends the groups of the parts before it, and those after it begin others.
// Its faces stand before its outlines, in a group that parts with the same brush and layer share as
// long as nothing is drawn between them. A comment with the first part's own figures precedes each
// group.
void WriteSvgGroups(const PartsA& model, SvgCanvas* canvas);

}  // namespace kerno
