// The two routes to a special folder.
#pragma once

#include <cstdint>
#include <filesystem>

#include "platform/system.h"

namespace kerno {

// The folder of 32-bit programs, beyond the folders of SpecialFolderId.
inline constexpr uint32_t kProgramFilesX86 = 0x2A;  // CSIDL_PROGRAM_FILESX86

// By the function that answers a path, where the shell has it, else by the item list. Empty when
// the system does not know the folder.
std::filesystem::path SpecialFolderPath(uint32_t id, MissingFolder missing);

// By the item list alone, as on systems whose shell has no such function.
std::filesystem::path SpecialFolderByItemList(uint32_t id, MissingFolder missing);

}  // namespace kerno
