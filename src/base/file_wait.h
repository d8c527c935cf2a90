// Waiting for a file that another process holds.
#pragma once

#include <filesystem>
#include <functional>
#include <string_view>

#include "platform/file_replacement.h"
#include "platform/status.h"

namespace kerno {

// What the wait display tells.
enum class FileWait { kRead, kWrite, kNothing };

// Makes `attempt` up to 100 times, 100 ms apart, while it answers with a sharing violation. The
// wait display tells the path after the first such answer and is cleared at the end. The result is
// that of the last attempt.
Status WaitForFile(const std::filesystem::path& path, FileWait wait,
                   const std::function<Status()>& attempt);

// ReplaceFile for a target that another process may hold: waits until nobody does.
Status ReplaceWhenFree(const std::filesystem::path& target, const FileFiller& fill);
Status ReplaceWhenFree(const std::filesystem::path& target, std::string_view bytes);

}  // namespace kerno
