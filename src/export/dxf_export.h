// The parts model as a drawing file (.dxf).
#pragma once

#include <filesystem>

#include "export/aci.h"
#include "export/dxf_writer.h"
#include "parts/parts.h"
#include "platform/file_replacement.h"

namespace kerno {

// How an element's layer is named.
enum class DxfLayerRule {
  kName,  // by its name, "Unknown" without one
  // By its name, without one by its colour index. Classic: the layer is set before the colour, so
  // that it is listed with the colour of the element before; entities carry their own.
  kColour,
};

struct DxfOptions {
  DxfLayerRule layers = DxfLayerRule::kName;
  AciRule aci = AciRule::kClassic;
};

// Writes every element of the model: lines and edges as LINE, circles as CIRCLE or ARC, faces as
// 3DFACE (more than four vertices as triangles), texts as TEXT. Point sets have no form here and
// are left out. The drawing is flat when all vertices have the same z.
//
// Told through the notices, once for each file: coordinates that lost digits, how many elements
// were left out for coordinates that are missing or not finite, point sets.
[[nodiscard]] Status ExportDxf(const PartsA& model, const std::filesystem::path& file,
                               const DxfOptions& options = {});

// The same bytes into an open file, which the caller commits; `name` is for messages.
[[nodiscard]] Status WriteDxf(const PartsA& model, const DxfOptions& options,
                              const std::filesystem::path& name, FileReplacement* out);

}  // namespace kerno
