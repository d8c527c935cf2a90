// The unnamed files of this process, for what writes into them.
#pragma once

#include <filesystem>

namespace kerno::posix {

// The descriptor of the file that is shown under a path; -1 where there is none.
int UnnamedDescriptor(const std::filesystem::path& shown);

}  // namespace kerno::posix
