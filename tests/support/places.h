// Places of the system that refuse to be written.
#pragma once

#include <filesystem>

namespace kerno::test {

extern const std::filesystem::path kUnwritableFolder;  // to the superuser too
extern const std::filesystem::path kFullDevice;        // accepts no byte

// Whether a file that is held for writing cannot be read by others, whatever they ask with.
extern const bool kHoldsKeepReadersOut;

}  // namespace kerno::test
