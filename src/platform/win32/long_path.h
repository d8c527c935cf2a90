// Paths that may be longer than the 259 units that the system's calls take as they are.
#pragma once

#include <filesystem>

namespace kerno {

// The path in a form that every call takes: a long one becomes absolute with "\\?\" in front
// ("\\?\UNC\" for a network path), any other stays as it is.
std::filesystem::path LongPath(const std::filesystem::path& path);

}  // namespace kerno
