// What a file that was dropped on the window is to the program.
#pragma once

#include <filesystem>
#include <string>

namespace kerno {

enum class DroppedKind {
  kFolder,
  kParts,  // a parts file, by its extension
  kFont,   // a font file, by its first bytes
  kText,   // a text file, by its bytes
  kOther,
};

// Looks at the name and the first bytes. A file that cannot be opened is kOther.
DroppedKind KindOfDropped(const std::filesystem::path& file);

// Text files beyond this many bytes are refused.
inline constexpr uintmax_t kLargestDroppedText = 4u << 20;

}  // namespace kerno
