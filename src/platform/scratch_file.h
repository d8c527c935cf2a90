// Bytes that are too many for memory, kept in a file that nobody else sees and that vanishes with
// its owner or with the process.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string_view>

#include "platform/status.h"

namespace kerno {

class ScratchFile {
 public:
  virtual ~ScratchFile() = default;

  // Makes an empty file in `folder`, its name beginning with `prefix`. Null on failure, with the
  // reason in *status.
  static std::unique_ptr<ScratchFile> Create(const std::filesystem::path& folder,
                                             std::string_view prefix, Status* status);

  // Puts bytes after those written so far. After a failure the earlier bytes are still there.
  virtual Status Append(std::string_view bytes) = 0;

  // Reads up to `size` bytes from `offset` on into `buffer`; *count tells how many there were.
  virtual Status Read(uint64_t offset, char* buffer, size_t size, size_t* count) = 0;
};

}  // namespace kerno
