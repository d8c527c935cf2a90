// The growing bytes of one section of a file: in memory first, in a scratch file when they outgrow
// it.
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_replacement.h"
#include "platform/scratch_file.h"

namespace kerno {

class SectionBuffer {
 public:
  static constexpr size_t kMemoryLimit = size_t{64} << 20;

  // Scratch files are made in `folder` with names that begin with `prefix`. A folder that takes
  // none leaves the bytes in memory.
  SectionBuffer(std::filesystem::path folder, std::string prefix,
                size_t memory_limit = kMemoryLimit);

  // Room for at least `size` more bytes, to be filled from the front; Advance tells how many were.
  char* Room(size_t size) {
    if (chunks_.empty() || chunks_.back().capacity - chunks_.back().used < size) AddChunk(size);
    return chunks_.back().bytes.get() + chunks_.back().used;
  }
  void Advance(size_t size) { chunks_.back().used += size; }

  void Append(std::string_view bytes) {
    std::memcpy(Room(bytes.size()), bytes.data(), bytes.size());
    Advance(bytes.size());
  }

  // Lets full chunks go to the file at once; CopyTo then adds the rest.
  void StreamInto(FileReplacement* out) { stream_ = out; }

  // Writes everything that is not in the file yet, from the first byte on. The first failure of any
  // write.
  Status CopyTo(FileReplacement* out) const;

  bool spilled() const { return spilled_ > 0; }

 private:
  struct Chunk {
    std::unique_ptr<char[]> bytes;
    size_t used = 0;
    size_t capacity = 0;
  };

  void AddChunk(size_t least);
  void Spill();
  void Stream();

  std::filesystem::path folder_;
  std::string prefix_;
  size_t memory_limit_;
  std::vector<Chunk> chunks_;
  std::vector<Chunk> spare_;  // memory that a spill has freed
  size_t in_memory_ = 0;      // capacity of all chunks that are not spare
  std::unique_ptr<ScratchFile> scratch_;
  uint64_t spilled_ = 0;  // bytes in the scratch file, before those of the chunks
  bool may_spill_ = true;
  FileReplacement* stream_ = nullptr;
  Status stream_status_;
};

}  // namespace kerno
