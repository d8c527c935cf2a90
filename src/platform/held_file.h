// A file that is held while it is used, so that other processes wait.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/status.h"

namespace kerno {

// What other processes must not do meanwhile. On POSIX the locks are advisory: a process that asks
// for none is not kept out.
enum class Deny {
  kWrite,  // the file is read; others may read it too
  kAll,    // the file is about to be replaced or changed
};

// Holds the file from Open until destruction.
class HeldFile {
 public:
  virtual ~HeldFile() = default;

  // Opens an existing file, never waiting. Null on failure with the reason in *status:
  // kSharingViolation when another process (or another HeldFile) holds it, kAccessDenied when
  // Deny::kAll is wanted of a file that may not be written.
  static std::unique_ptr<HeldFile> Open(const std::filesystem::path& path, Deny deny,
                                        Status* status);

  // The content of the file that is held, its first `most` bytes; devices and pipes are as empty.
  virtual Status Read(std::string* bytes, size_t most = std::string::npos) = 0;

  // Appends the next piece of the content to *bytes, from `offset` on: about `about` bytes where
  // the file can be read in pieces, all that is left where it cannot, nothing at the end.
  virtual Status ReadPiece(uint64_t offset, size_t /*about*/, std::string* bytes) {
    std::string all;
    Status status = Read(&all);
    if (offset < all.size()) bytes->append(all, static_cast<size_t>(offset));
    return status;
  }
};

// The first `most` bytes of a file, whoever holds it: for those who read what is always replaced
// whole. kSharingViolation only where the system itself keeps readers out of a file that is held.
Status PeekFile(const std::filesystem::path& path, std::string* bytes,
                size_t most = std::string::npos);

// Creates a file with these bytes where nothing stands yet: it appears whole or not at all.
// kSharingViolation when something stands there already.
Status CreateNewFile(const std::filesystem::path& path, std::string_view bytes);

enum class IfMissing { kFail, kCreate };

// Replaces the content of a file by what `change` makes of it (nothing: it stays as it is), holding
// it from before the reading until after the replacement. A missing file is as an empty one with
// kCreate and kNotFound with kFail. Never waits: kSharingViolation when another process holds it.
Status ChangeFile(const std::filesystem::path& path, IfMissing if_missing,
                  const std::function<std::optional<std::string>(std::string_view)>& change);

// Adds bytes at the end of a file, after `start` when the file is new or empty. Never waits:
// kSharingViolation when another process holds it.
Status AppendToFile(const std::filesystem::path& path, std::string_view start,
                    std::string_view bytes);

}  // namespace kerno
