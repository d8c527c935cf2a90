// A file for a moment.
#pragma once

#include <filesystem>
#include <string_view>

#include "platform/status.h"

namespace kerno {

// A file in a folder of its own that nobody else can look into; both go with the object.
class ScratchPath {
 public:
  explicit ScratchPath(std::string_view extension);
  ~ScratchPath() { Remove(); }
  ScratchPath(const ScratchPath&) = delete;
  ScratchPath& operator=(const ScratchPath&) = delete;

  const std::filesystem::path& path() const { return path_; }
  // Whether the folder is there.
  const Status& status() const { return status_; }

  // Takes the names away. Where a system lets go of the name of an open file, that stays readable
  // and is gone with the process, however this ends.
  void Remove() const;

 private:
  std::filesystem::path folder_;
  std::filesystem::path path_;
  Status status_;
};

}  // namespace kerno
