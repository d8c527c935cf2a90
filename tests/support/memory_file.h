// A file replacement that keeps its bytes in memory and fails on demand, as a full disk does.
#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>

#include "platform/file_replacement.h"

namespace kerno::test {

class MemoryFile final : public FileReplacement {
 public:
  static constexpr size_t kUnlimited = std::numeric_limits<size_t>::max();

  MemoryFile() = default;
  // A disk that is full after `capacity` bytes.
  explicit MemoryFile(size_t capacity) : capacity_(capacity) {}

  Status Write(std::string_view more) override {
    ++writes;
    const size_t room = capacity_ - bytes.size();
    bytes.append(more.substr(0, room));
    return more.size() > room ? Full() : Status::Ok();
  }

  Status Commit() override { return Status::Ok(); }

  std::string bytes;
  size_t writes = 0;

 private:
  static Status Full() { return Status::Error(Failure::kNoSpace, u"memory", u"the disk is full"); }

  size_t capacity_ = kUnlimited;
};

}  // namespace kerno::test
