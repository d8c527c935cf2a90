// A record of every copy of a model, for those who look where copies come from.
#pragma once

#include <cstddef>
#include <string_view>

namespace kerno {

// Notes in the dump log that `operation` copied so many parts, when "Debug\Parts"/"CopyLog" asks
// for it (read once per process). Costs a comparison otherwise.
void LogModelCopy(std::u16string_view operation, size_t parts);

}  // namespace kerno
