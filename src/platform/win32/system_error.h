// What the system's calls answer, put into words for the user.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "platform/status.h"

namespace kerno {

// A path as text for messages.
std::u16string SystemText(const std::filesystem::path& path);

// The failure that an error number of the system (GetLastError) stands for, about the thing at
// `what`.
Status SystemError(const std::filesystem::path& what, uint32_t error);

// The words for an error number, without a line end: of a library of the system that is loaded,
// when it has some for its own errors, else the system's.
std::u16string SystemMessage(uint32_t error, const wchar_t* library = nullptr);

}  // namespace kerno
