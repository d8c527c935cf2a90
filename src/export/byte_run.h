// Bytes on their way to a file.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

#include "platform/file_replacement.h"

namespace kerno {

// Keeps what is appended until it is written; once a file is set, no more than about a megabyte.
class ByteRun {
 public:
  // Room for at least `size` more bytes, to be filled from the front; Advance tells how many were.
  char* Room(size_t size) {
    if (capacity_ - used_ < size) MakeRoom(size);
    return bytes_.get() + used_;
  }
  void Advance(size_t size) { used_ += size; }

  void Append(std::string_view bytes) {
    std::memcpy(Room(bytes.size()), bytes.data(), bytes.size());
    Advance(bytes.size());
  }

  // From now on the bytes go to the file whenever they are many.
  void StreamInto(FileReplacement* out) { stream_ = out; }

  // Writes what is not in the file yet. The first failure of any write.
  [[nodiscard]] Status WriteTo(FileReplacement* out) {
    if (status_.ok()) status_ = out->Write({bytes_.get(), used_});
    used_ = 0;
    return status_;
  }

 private:
  static constexpr size_t kMany = size_t{1} << 20;

  void MakeRoom(size_t size) {
    if (stream_ && used_ >= kMany) (void)WriteTo(stream_);  // kept in status_
    if (capacity_ - used_ >= size) return;
    capacity_ = std::max(2 * capacity_, used_ + std::max(size, kMany / 16));
    auto larger = std::make_unique_for_overwrite<char[]>(capacity_);
    std::memcpy(larger.get(), bytes_.get(), used_);
    bytes_ = std::move(larger);
  }

  std::unique_ptr<char[]> bytes_ = std::make_unique_for_overwrite<char[]>(1);
  size_t used_ = 0;
  size_t capacity_ = 0;
  FileReplacement* stream_ = nullptr;
  Status status_;
};

}  // namespace kerno
