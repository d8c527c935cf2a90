#include "platform/file_replacement.h"

#include <string>

#include "platform/folder_path.h"

namespace kerno {

// ".kerno-PROCESS-COUNT.tmp"
bool IsReplacementName(const std::filesystem::path& name) {
  const std::string text = PathBytes(name);
  const std::string_view start = ".kerno-", end = ".tmp";
  if (text.size() <= start.size() + end.size()) return false;
  if (!text.starts_with(start) || !text.ends_with(end)) return false;
  const auto numbers = text.substr(start.size(), text.size() - start.size() - end.size());
  return numbers.find_first_not_of("0123456789-") == numbers.npos;
}

Status ReplaceFile(const std::filesystem::path& target, const FileFiller& fill) {
  Status status;
  const auto file = FileReplacement::Create(target, &status);
  if (file) status = fill(file.get());
  return status.ok() ? file->Commit() : status;
}

Status ReplaceFile(const std::filesystem::path& target, std::string_view bytes) {
  return ReplaceFile(target, [&](FileReplacement* file) { return file->Write(bytes); });
}

}  // namespace kerno
