// What the pens draw of a model in an SVG drawing, and its texts.
#pragma once

#include "export/svg_canvas.h"
#include "parts/parts.h"

namespace kerno {

bool HasTexts(const Parts& part);

// Whether something is drawn with a pen of width 0, which takes the canvas's hairline.
bool HasHairlines(const PartsA& model);

// Writes one group for each pen and layer, in order of first use, with a comment of the pen's own
// figures before it.
void WriteSvgOutlines(const PartsA& model, SvgCanvas* canvas);

}  // namespace kerno
