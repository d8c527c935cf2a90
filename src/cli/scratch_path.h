// A file for a moment.
#pragma once

#include <filesystem>
#include <memory>
#include <string_view>

#include "platform/status.h"
#include "platform/unnamed_file.h"

namespace kerno {

// A file without a name where the system has such; else one in a folder of its own that nobody else
// can look into, and both go with the object.
class ScratchPath {
 public:
  explicit ScratchPath(std::string_view extension);
  ~ScratchPath() { Remove(); }
  ScratchPath(const ScratchPath&) = delete;
  ScratchPath& operator=(const ScratchPath&) = delete;

  // Where FileReplacement writes it.
  const std::filesystem::path& path() const { return path_; }
  // Where it is read.
  std::filesystem::path ReadPath() const { return file_ ? file_->ReadPath() : path_; }
  // Whether it can be written.
  const Status& status() const { return status_; }

  // Takes the names away. Where a system lets go of the name of an open file, that stays readable
  // and is gone with the process, however this ends.
  void Remove() const;

 private:
  std::unique_ptr<UnnamedFile> file_;
  std::filesystem::path folder_;
  std::filesystem::path path_;
  Status status_;
};

}  // namespace kerno
