// The elements of one part in an SVG drawing, into a group that stands open.
#pragma once

#include "export/svg_canvas.h"
#include "parts/parts.h"

namespace kerno {

// The faces: polygons, or hatches clipped to them.
void WriteSvgFaces(const PartsElement& part, SvgCanvas* canvas);

// Everything else: what the pen draws, and the texts.
void WriteSvgOutlines(const PartsElement& part, SvgCanvas* canvas);

}  // namespace kerno
