#include <dirent.h>

#include <cerrno>
#include <memory>
#include <string_view>

#include "platform/folder_path.h"
#include "platform/posix/system_error.h"

namespace kerno {

namespace fs = std::filesystem;

namespace {

struct CloseFolder {
  void operator()(DIR* folder) const noexcept { closedir(folder); }
};

}  // namespace

bool IsWholePath(const fs::path& path) {
  return path.is_absolute();
}

fs::path WholePath(const fs::path& path) {
  std::error_code error;
  const fs::path whole = fs::absolute(path, error);
  return error ? path : whole.lexically_normal();
}

std::optional<fs::path> CurrentDrive() {
  return std::nullopt;
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

PathFacts FactsOfPath(const fs::path& path) {
  std::error_code error;
  PathFacts facts;
  switch (fs::status(path, error).type()) {
    case fs::file_type::not_found:
      break;
    case fs::file_type::regular:
      facts.kind = PathKind::kFile;
      facts.size = fs::file_size(path, error);
      if (!error) break;
      facts = {};
      facts.kind = PathKind::kUnknown;
      facts.why = SystemError(path, error.value());
      break;
    case fs::file_type::directory:
      facts.kind = PathKind::kFolder;
      break;
    case fs::file_type::none:
      facts.kind = PathKind::kUnknown;
      facts.why = SystemError(path, error.value());
      break;
    default:
      facts.kind = PathKind::kOther;
  }
  return facts;
}

Status ListFolder(const fs::path& folder, const std::function<void(const fs::path&)>& take) {
  // The C++ library's iterator of folders ends the process where it gets no memory.
  const fs::path place = folder.empty() ? fs::path(".") : folder;
  const std::unique_ptr<DIR, CloseFolder> opened(opendir(place.c_str()));
  if (!opened) return SystemError(folder, errno);
  while (true) {
    errno = 0;
    const dirent* const entry = readdir(opened.get());
    if (!entry) return errno == 0 ? Status::Ok() : SystemError(folder, errno);
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") take(place / name);
  }
}

Status RemoveFile(const fs::path& file) {
  std::error_code error;
  fs::remove(file, error);
  return error ? SystemError(file, error.value()) : Status::Ok();
}

std::string PathBytes(const fs::path& path) {
  return path.native();
}

fs::path PathToOpen(const fs::path& path) {
  return path;
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
