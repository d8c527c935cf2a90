// Where scratch files, logs and settings go, and how folders are made.
#pragma once

#include <cstdint>
#include <filesystem>

#include "platform/status.h"

namespace kerno {

// The temporary folder, with a separator at the end; always one. The system's own answer, unless it
// lies in the system's "Windows" folder: then "Temp" beside the program. Without an answer TMP,
// TMPDIR and TEMP of the environment in this order, then a private folder named as the user under
// /tmp, then the cache folder, then the current folder.
std::filesystem::path TempFolder();

// The temporary folder for what the program leaves there, with a separator at the end: TempFolder
// where that is the user's and nobody else can write in it, else a private folder in it, named as
// the user, else one in the cache folder. Empty when none of these can be had: never a folder in
// which somebody else may have laid links.
std::filesystem::path OwnTempFolder();

// The process's current folder, with a separator at the end.
std::filesystem::path CurrentFolder();

// The folder of the running program, with a separator at the end; empty when it is not known.
std::filesystem::path ProgramFolder();

// The day's folder for scratch files, "Quenkit.tmp/YYYYMMDD/" in OwnTempFolder, created when
// missing; when that fails, the same under "Temp" beside the program or in the cache folder. With a
// separator at the end; empty where none of them can be had.
std::filesystem::path WorkFolder();

inline constexpr uint32_t kCreateSpecialFolder = 0x8000;  // CSIDL_FLAG_CREATE

// A special folder by its number (SpecialFolderId); with kCreateSpecialFolder in it, the folder is
// created. Empty when there is none or it cannot be created.
std::filesystem::path SpecialFolder(uint32_t id);

// Creates every missing level; the status names the first that cannot be created. Ok means that the
// whole path exists as a folder.
Status MakeFolders(const std::filesystem::path& path);

// The same for callers without a use for the reason: the first level that cannot be created is
// reported as a message, and the result is false; true means that the whole path exists as a
// folder.
bool CreateFolderPath(const std::filesystem::path& path);

}  // namespace kerno
