// What the system's calls answer, put into words for the user.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "platform/status.h"

namespace kerno {

// Bytes of the system (paths, messages), taken as UTF-8; each offending byte becomes U+FFFD.
std::u16string SystemText(std::string_view bytes);

// The failure that an errno stands for, about the thing at `what`.
Status SystemError(const std::filesystem::path& what, int error);

}  // namespace kerno
