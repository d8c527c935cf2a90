// The list of a model's parts and their sizes (.ipl): UTF-8, a record a line, fields parted by
// tabs.
#pragma once

#include <filesystem>

#include "parts/parts.h"
#include "platform/file_replacement.h"

namespace kerno {

// A heading, one record for each part, one for the whole: extents and sizes along x, y (up) and z.
// Vertices that are not finite, or beyond 1e100, do not count; the notices tell when there are any.
// A part without vertices has extents of 0.
[[nodiscard]] Status ExportIpl(const PartsA& model, const std::filesystem::path& file);

// The same bytes into an open file, which the caller commits; `name` is for messages.
[[nodiscard]] Status WriteIpl(const PartsA& model, const std::filesystem::path& name,
                              FileReplacement* out);

}  // namespace kerno
