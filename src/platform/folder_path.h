// Paths as the system takes them apart, and folders made one by one.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "platform/status.h"

namespace kerno {

// Whether the path stands for the same place whatever the current folder is. On a desktop system a
// network path ("\\server\share\...") does, and one without a drive does not.
bool IsWholePath(const std::filesystem::path& path);

// The path from its root on, without "." and ".."; the path itself when the system cannot tell.
std::filesystem::path WholePath(const std::filesystem::path& path);

// The root of the drive or share that the current folder is on; nothing on a system without drives.
std::optional<std::filesystem::path> CurrentDrive();

// The folders that lead to `path`, the path itself the last. What nobody can make (the root, a
// drive, a network server and its share, also after the prefix "\\?\") is none of them.
std::vector<std::filesystem::path> FolderLevels(const std::filesystem::path& path);

// Whether anything stands there.
bool PathExists(const std::filesystem::path& path);

bool IsFolder(const std::filesystem::path& path);

enum class PathKind {
  kMissing,
  kFile,
  kFolder,
  kOther,    // a device or a pipe
  kUnknown,  // the system does not say
};

struct PathFacts {
  PathKind kind = PathKind::kMissing;
  uint64_t size = 0;  // of a file, in bytes
  Status why;         // of kUnknown
};

// What stands there, links followed, however long the path is.
PathFacts FactsOfPath(const std::filesystem::path& path);

// Calls `take` with the path of everything that stands in the folder, in no order; "" is the
// current folder. Not ok when the folder cannot be read; what was taken before stands.
Status ListFolder(const std::filesystem::path& folder,
                  const std::function<void(const std::filesystem::path&)>& take);

// Removes a file; ok when it is gone already.
Status RemoveFile(const std::filesystem::path& file);

// The path as UTF-8: its bytes where names are bytes; elsewhere what is no text in it (a lone
// surrogate) becomes U+FFFD.
std::string PathBytes(const std::filesystem::path& path);

// The path in the form in which the standard library's streams open it, however long it is.
std::filesystem::path PathToOpen(const std::filesystem::path& path);

// Makes a folder whose parent exists; ok when it is there already, kNotFound without the parent.
Status MakeFolder(const std::filesystem::path& path);

// The system's words for an error of the standard library's file functions.
std::u16string ErrorText(const std::error_code& error);

}  // namespace kerno
