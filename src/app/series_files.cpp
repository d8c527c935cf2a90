#include "app/series_files.h"

#include <chrono>
#include <string>
#include <system_error>
#include <vector>

#include "base/folders.h"
#include "base/text.h"
#include "platform/file_replacement.h"
#include "platform/folder_path.h"

namespace kerno {
namespace {

// Whether nobody has written to the file lately.
bool IsAbandoned(const std::filesystem::path& file) {
  constexpr auto kLongestWrite = std::chrono::minutes(1);
  std::error_code error;
  const auto written = std::filesystem::last_write_time(PathToOpen(file), error);
  return !error && std::filesystem::file_time_type::clock::now() - written > kLongestWrite;
}

}  // namespace

Status FindStanding(const std::filesystem::path& file, ExistingFiles existing, bool* stays) {
  *stays = false;
  if (existing == ExistingFiles::kReplace) return Status::Ok();
  const PathFacts facts = FactsOfPath(file);
  if (facts.kind == PathKind::kMissing) return Status::Ok();
  const bool is_whole = facts.kind == PathKind::kFile && facts.size > 0;
  *stays = existing == ExistingFiles::kKeep || is_whole;
  if (*stays) return Status::Ok();
  if (facts.kind == PathKind::kUnknown) return facts.why;
  return Status::Error(Failure::kOther, PathText(file),
                       facts.kind == PathKind::kFile     ? u"is empty: no earlier run wrote it"
                       : facts.kind == PathKind::kFolder ? u"is a folder, no file that is done"
                                                         : u"is no regular file");
}

Status FolderMaker::MakeFor(const std::filesystem::path& file) {
  const std::filesystem::path folder = file.parent_path();
  if (folder.empty() || folder == last_) return Status::Ok();
  if (!IsFolder(folder)) {
    if (Status made = MakeFolders(folder); !made.ok()) return made;
  }
  last_ = folder;
  return Status::Ok();
}

void LeftoverRemover::CleanFor(const std::filesystem::path& file) {
  const std::filesystem::path folder = file.parent_path();
  if (!seen_.insert(std::filesystem::hash_value(folder)).second) return;
  if (!folder.empty() && !IsFolder(folder)) return;
  std::vector<std::filesystem::path> left;
  const Status listed = ListFolder(folder, [&](const std::filesystem::path& path) {
    if (IsReplacementName(path.filename()) && IsAbandoned(path)) left.push_back(path);
  });
  if (!listed.ok()) return;
  for (const std::filesystem::path& path : left) {
    if (!RemoveFile(path).ok()) return;  // harmless where it stays
  }
}

}  // namespace kerno
