// A drawing for a machine as a plot file (.plt, HPGL) for vinyl cutters and pen plotters.
#pragma once

#include <filesystem>

#include "drawing/drawing.h"
#include "export/drawing_style.h"
#include "export/layer_paths.h"
#include "platform/file_replacement.h"

namespace kerno {

// 40 plotter units a millimetre, y up. Each path is one pen-down move along chords within
// `tolerance`, whose corners are rounded to units; a closed one ends at its first point exactly.
// Layers are pens 1 to 8 and over again, one layer after the other. Paths that are smaller than a
// unit are left out; these and coordinates below 0 are told.
[[nodiscard]] Status WriteDrawingPlt(const Drawing& drawing, const DrawingStyle& style,
                                     double tolerance, const std::filesystem::path& file);
[[nodiscard]] Status WritePlt(const LayerPaths& paths, double tolerance,
                              const std::filesystem::path& file);

}  // namespace kerno
