// A file that is written whole or not at all: the bytes go to a new file beside the target, which
// is renamed over it at the end. Every step is checked.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string_view>

#include "platform/status.h"

namespace kerno {

// Until Commit succeeds the target is what it was; destroying an uncommitted replacement removes
// what was written. A target that is a device or a pipe is written through, a symbolic link keeps
// pointing and the file that it points to is replaced.
class FileReplacement {
 public:
  virtual ~FileReplacement() = default;

  // Opens the replacement of `target`. Null on failure, with the reason in *status.
  static std::unique_ptr<FileReplacement> Create(const std::filesystem::path& target,
                                                 Status* status);

  // Appends bytes. After a failure the replacement can only be destroyed.
  virtual Status Write(std::string_view bytes) = 0;

  // Whether what was written can be written over: not on a device or in a pipe.
  virtual bool CanRewrite() const { return false; }

  // Writes over bytes that were written before, from the offset `at` on; Write goes on at the end.
  virtual Status Rewrite(uint64_t /*at*/, std::string_view /*bytes*/) {
    return Status::Error(Failure::kOther, u"", u"what is written stays");
  }

  // Flushes, closes and renames. The target then holds exactly the bytes written, or is untouched.
  virtual Status Commit() = 0;
};

// Whether a name is one that replacements have before they take their target's: a killed process
// may leave such a file.
bool IsReplacementName(const std::filesystem::path& name);

// Writes what goes into a file, piece by piece.
using FileFiller = std::function<Status(FileReplacement*)>;

// Replaces `target` by what `fill` writes, or by `bytes`; it stays as it was when anything fails.
Status ReplaceFile(const std::filesystem::path& target, const FileFiller& fill);
Status ReplaceFile(const std::filesystem::path& target, std::string_view bytes);

}  // namespace kerno
