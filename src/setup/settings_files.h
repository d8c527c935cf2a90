// The user's settings that the programs of an installation keep beside themselves.
#pragma once

#include <filesystem>

#include "setup/outcome.h"

namespace kerno {

// Moves them to another installation, where it has none of its own.
SetupResult CarrySettings(const std::filesystem::path& from, const std::filesystem::path& to);

// Removes them, and their folders as far as those are empty then.
SetupResult RemoveSettings(const std::filesystem::path& folder);

// Removes the folders that programs made for settings and never wrote any into.
void RemoveEmptySettingsFolders(const std::filesystem::path& folder);

}  // namespace kerno
