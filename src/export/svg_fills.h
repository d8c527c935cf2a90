// The faces of a model in an SVG drawing.
#pragma once

#include "export/svg_canvas.h"
#include "parts/parts.h"

namespace kerno {

// How a brush fills.
enum class SvgFill { kNone, kSolid, kHatched };
SvgFill SvgFillOf(const BrushAttributes& brush);

// Writes the faces in model order, a group for each run of parts with one brush: filled polygons,
// or hatches clipped to them.
void WriteSvgFills(const PartsA& model, SvgCanvas* canvas);

}  // namespace kerno
