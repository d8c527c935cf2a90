// A drawing for a machine in any of the formats: by a writer of its own where the format has paths,
// by way of the parts model elsewhere.
#pragma once

#include <filesystem>

#include "drawing/drawing.h"
#include "export/drawing_style.h"
#include "export/formats.h"

namespace kerno {

// Writes the drawing, whole or not at all. `tolerance` is for formats that have no curves. May be
// called from several threads at a time; formats by way of the parts model then wait for each
// other.
[[nodiscard]] Status WriteDrawing(const Drawing& drawing, const DrawingStyle& style,
                                  double tolerance, const Format& format,
                                  const std::filesystem::path& file);

}  // namespace kerno
