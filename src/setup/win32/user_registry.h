// What the installer changes of the user's part of the registry, beyond what its own language can.
#pragma once

#include <filesystem>

#include "setup/outcome.h"

namespace kerno {

// Adds the folder to the user's search path, or takes it out. The value keeps its type and every
// unit of its other entries; running programs are told. kPathLeft where that cannot be, and nothing
// is changed then.
SetupResult AddToUserPath(const std::filesystem::path& folder);
SetupResult RemoveFromUserPath(const std::filesystem::path& folder);

// Removes what the programs note there by themselves. A folder of settings that the user named
// stays.
SetupResult RemoveNotes();

}  // namespace kerno
