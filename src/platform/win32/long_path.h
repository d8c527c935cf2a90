// Paths that may be longer than the 259 units that the system's calls take as they are.
#pragma once

#include <filesystem>

namespace kerno {

// The path from its drive or network share on, without "." and ".."; the path itself when the
// system cannot tell. What begins with "\\?\" stays as it is, the name of a device becomes
// "\\.\NAME".
std::filesystem::path FullPath(const std::filesystem::path& path);

// The path in a form that every call takes: where the whole path is long, it is given with "\\?\"
// in front ("\\?\UNC\" for a network path); any other stays as it is.
std::filesystem::path LongPath(const std::filesystem::path& path);

// A folder's path as others name it: with no separator at its end, unless it is a root.
std::filesystem::path WithoutSeparator(const std::filesystem::path& folder);

}  // namespace kerno
