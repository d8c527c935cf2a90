// A file that another program holds.
#pragma once

#include <filesystem>
#include <memory>

namespace kerno::test {

// The ways in which a system lets a program hold a file; where it has only one, both are that.
enum class HoldKind { kWholeFile, kRecord };

// Holds the file, which must exist, from the end of construction: in a process of its own where
// the system counts holds by process.
class FileHolder {
 public:
  // `milliseconds` is when it lets go by itself; 0: never.
  FileHolder(const std::filesystem::path& file, HoldKind kind, unsigned milliseconds = 0);

  void Release() { hold_.reset(); }

 private:
  std::shared_ptr<void> hold_;  // what holds the file, until it ends
};

}  // namespace kerno::test
