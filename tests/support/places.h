// Places and limits of the system that refuse to be written.
#pragma once

#include <cstddef>
#include <filesystem>

namespace kerno::test {

extern const std::filesystem::path kUnwritableFolder;  // to the superuser too
extern const std::filesystem::path kFullDevice;        // accepts no byte

// Whether a file that is held for writing cannot be read by others, whatever they ask with.
extern const bool kHoldsKeepReadersOut;

// While it lives no file grows beyond `bytes`, where the system can say so.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(size_t bytes);
  ~FileSizeLimit();
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

  bool holds() const;

 private:
  size_t before_ = 0;
};

}  // namespace kerno::test
