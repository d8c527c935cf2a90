// Where fonts of strokes are kept. No system knows of them: these are the folders of the programs
// and packages that bring them, and the user's own.
#pragma once

#include <filesystem>
#include <vector>

namespace kerno {

// The user's folders first; those that are missing are among them.
std::vector<std::filesystem::path> StrokeFontFolders();

}  // namespace kerno
