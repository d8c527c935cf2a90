// A drawing for a machine as an SVG picture of its true size.
#pragma once

#include <filesystem>

#include "drawing/drawing.h"
#include "export/drawing_style.h"
#include "platform/file_replacement.h"

namespace kerno {

// One path for each shape, in the drawing's order, with lines, circular arcs and curves as they
// are; one group for each layer. The picture is as large as the ink; y points down in it. The same
// drawing gives the same bytes.
[[nodiscard]] Status WriteDrawingSvg(const Drawing& drawing, const DrawingStyle& style,
                                     const std::filesystem::path& file);

}  // namespace kerno
