#include "platform/file_replacement.h"

namespace kerno {

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
