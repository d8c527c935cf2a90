#include "platform/folder_path.h"
#include "platform/posix/system_error.h"

namespace kerno {

namespace fs = std::filesystem;

bool IsWholePath(const fs::path& path) {
  return path.is_absolute();
}

fs::path WholePath(const fs::path& path) {
  std::error_code error;
  const fs::path whole = fs::absolute(path, error);
  return error ? path : whole.lexically_normal();
}

std::vector<fs::path> FolderLevels(const fs::path& path) {
  std::vector<fs::path> levels;
  fs::path level;
  for (const fs::path& name : path) {
    level /= name;
    if (!name.empty() && !name.has_root_directory()) levels.push_back(level);
  }
  return levels;
}

bool PathExists(const fs::path& path) {
  std::error_code error;
  return fs::exists(path, error);
}

bool IsFolder(const fs::path& path) {
  std::error_code error;
  return fs::is_directory(path, error);
}

Status MakeFolder(const fs::path& path) {
  std::error_code error;
  fs::create_directory(path, error);  // no error when another process was faster
  return error ? SystemError(path, error.value()) : Status::Ok();
}

std::u16string ErrorText(const std::error_code& error) {
  return SystemText(error.message());
}

}  // namespace kerno
