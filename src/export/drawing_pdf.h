// A drawing for a machine as a page of its true size (.pdf), for laser drivers and printers.
#pragma once

#include <filesystem>

#include "drawing/drawing.h"
#include "export/drawing_style.h"
#include "export/layer_paths.h"
#include "platform/file_replacement.h"

namespace kerno {

// PDF 1.6: one page as large as the sheet or the ink, up to the next whole point, which stands at
// its lower left corner. Each path is a hairline of its own in its layer's colour: lines and
// cubics; arcs become cubics within `tolerance`. Each layer is an optional content group. Nothing
// is compressed; the same drawing gives the same bytes.
[[nodiscard]] Status WriteDrawingPdf(const Drawing& drawing, const DrawingStyle& style,
                                     double tolerance, const std::filesystem::path& file);
[[nodiscard]] Status WritePdf(const LayerPaths& paths, double tolerance,
                              const std::filesystem::path& file);

}  // namespace kerno
