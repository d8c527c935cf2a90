// One entry for the formats of the dispatch: the extension of the file's name chooses.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string_view>

#include "export/formats.h"
#include "parts/parts.h"
#include "platform/status.h"

namespace kerno {

// The formats that other programs know and this one does not write: mesh formats and some more.
bool IsKnownUnwritten(std::u16string_view extension);

// Writes the model to `file`, whole or not at all, in the format of its extension, which is
// compared exactly; "ipx" alone is taken in any case. 1 on success, 0 on failure; the reason goes
// to *status when that is given.
int32_t Export(const PartsA& model, const std::filesystem::path& file,
               const OutputOptions& options = {}, Status* status = nullptr);

}  // namespace kerno
