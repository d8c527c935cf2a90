// A file that no folder holds: nothing is left of it, however the process ends.
#pragma once

#include <filesystem>
#include <memory>

#include "platform/status.h"

namespace kerno {

class UnnamedFile {
 public:
  virtual ~UnnamedFile() = default;

  // One on the disk of `folder`. What FileReplacement writes to the path `shown`, where no file may
  // stand, goes into it while it lives; one such path at a time. Null, with *status ok, where the
  // system has no such files.
  static std::unique_ptr<UnnamedFile> Create(const std::filesystem::path& folder,
                                             const std::filesystem::path& shown, Status* status);

  // Under which it can be opened for reading, by this process.
  virtual std::filesystem::path ReadPath() const = 0;
};

}  // namespace kerno
