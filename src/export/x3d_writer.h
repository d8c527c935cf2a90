// The parts model as an X3D 3.3 scene (.x3d), in XML. y points up, as in the model.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

#include "parts/parts.h"
#include "platform/file_replacement.h"

namespace kerno {

// One shape for each pen colour with the lines, edges, circles and arcs drawn in it, as segments of
// two points, and one for each brush colour with the faces, as triangles. Texts and point sets have
// no form here and are left out, as is what has a coordinate that is not finite or beyond 1e100;
// the notices tell how many. A comment tells the time of writing: the clock's, or `moment`
// (FileComment).
[[nodiscard]] Status ExportX3d(const PartsA& model, const std::filesystem::path& file,
                               std::optional<int64_t> moment = {});

// The same bytes into an open file, which the caller commits; `name` is for messages.
[[nodiscard]] Status WriteX3d(const PartsA& model, const std::filesystem::path& name,
                              FileReplacement* out, std::optional<int64_t> moment = {});

}  // namespace kerno
