// Text from files and pipes, and its line ends.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "platform/status.h"

namespace kerno {

// Decodes UTF-16 with a mark (either byte order) or UTF-8 with or without one. `name` says in a
// failure whose bytes they are; the reason names the offset of the first offending byte. *text is
// untouched on failure.
Status DecodeText(std::string_view bytes, std::u16string_view name, std::u16string* text);

// All bytes of a file, a device or a pipe.
Status LoadBytes(const std::filesystem::path& path, std::string* bytes);

// Reads and decodes a whole file.
Status LoadText(const std::filesystem::path& path, std::u16string* text);

// The text with every line end (CR LF, a lone LF, a lone CR) as CR LF.
std::u16string WithCrLf(std::u16string_view text);

}  // namespace kerno
