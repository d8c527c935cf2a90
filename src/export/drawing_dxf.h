// A drawing for a machine as a drawing file (.dxf): closed polylines with bulges, splines where
// curves were kept, in a unit that the header names.
#pragma once

#include <filesystem>

#include "drawing/drawing.h"
#include "export/drawing_style.h"
#include "platform/file_replacement.h"

namespace kerno {

// R2000: LWPOLYLINE and SPLINE with handles, all tables, the objects' root. R12: POLYLINE; curves
// have no form there and fail. Names of layers are bytes of the header's code page. Coordinates have
// six decimals (eight in inches); the same drawing gives the same bytes.
[[nodiscard]] Status WriteDrawingDxf(const Drawing& drawing, const DrawingStyle& style,
                                     const std::filesystem::path& file);

}  // namespace kerno
