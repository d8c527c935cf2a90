// Paths as the system takes them apart, and folders made one by one.
#pragma once

#include <filesystem>
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

// The folders that lead to `path`, the path itself the last. What nobody can make (the root, a
// drive, a network server and its share, also behind the prefix "\\?\") is none of them.
std::vector<std::filesystem::path> FolderLevels(const std::filesystem::path& path);

// Whether anything stands there.
bool PathExists(const std::filesystem::path& path);

bool IsFolder(const std::filesystem::path& path);

// Makes a folder whose parent exists; ok when it is there already, kNotFound without the parent.
Status MakeFolder(const std::filesystem::path& path);

// The system's words for an error of the standard library's file functions.
std::u16string ErrorText(const std::error_code& error);

}  // namespace kerno
