// The files of an installation. A list beside them, kFileList, names each by its path from the
// folder on, in UTF-8, one a line; what it does not name is never touched.
#pragma once

#include <filesystem>

#include "setup/outcome.h"

namespace kerno {

inline constexpr const char* kFileList = "installed.txt";

// The installer's own way out; it may run while it takes everything else away.
inline constexpr const char* kUninstaller = "uninstall.exe";

// Whether the programs of the installation could be replaced now: kDone also without one, and
// kInUse where one of them runs.
SetupResult CheckPrograms(const std::filesystem::path& folder);

// Moves every file of `staged` to its place in `folder`, which lies on the same disk; files of the
// version before that the new one has not, go. All or nothing: after a failure `folder` holds what
// it held. `staged` is gone afterwards in any case.
SetupResult PlaceFiles(const std::filesystem::path& staged, const std::filesystem::path& folder);

// Removes the files of the list, the list, and folders that become empty by that, `folder` too.
// Where a file cannot be removed (kNotWritable), it and the list stay, and a second try is
// possible.
SetupResult RemoveFiles(const std::filesystem::path& folder);

// Removes the folders that lead from `folder` to `relative`, and `folder`, as far as they are
// empty.
void RemoveEmptyFolders(const std::filesystem::path& folder, std::filesystem::path relative);

}  // namespace kerno
