#include <algorithm>
#include <atomic>
#include <string>
#include <utility>

#include "platform/scratch_file.h"
#include "platform/win32/handle.h"
#include "platform/win32/long_path.h"
#include "platform/win32/system_error.h"
#include "platform/win32/windows_api.h"

namespace kerno {
namespace {

constexpr int kNameTries = 100;
constexpr size_t kLongestCall = 1 << 26;

OVERLAPPED At(uint64_t offset) {
  OVERLAPPED place{};
  place.Offset = static_cast<DWORD>(offset);
  place.OffsetHigh = static_cast<DWORD>(offset >> 32);
  return place;
}

// Opened so that the system removes it when it is closed, however the process ends.
class VanishingFile final : public ScratchFile {
 public:
  VanishingFile(std::filesystem::path name, Handle file)
      : name_(std::move(name)), file_(std::move(file)) {}

  Status Append(std::string_view bytes) override {
    uint64_t at = size_;
    while (!bytes.empty()) {
      const auto length = static_cast<DWORD>(std::min(bytes.size(), kLongestCall));
      OVERLAPPED place = At(at);
      DWORD written = 0;
      if (!WriteFile(file_.get(), bytes.data(), length, &written, &place)) {
        return SystemError(name_, GetLastError());
      }
      at += written;
      bytes.remove_prefix(written);
    }
    size_ = at;
    return Status::Ok();
  }

  Status Read(uint64_t offset, char* buffer, size_t size, size_t* count) override {
    *count = 0;
    if (offset >= size_) return Status::Ok();
    size = static_cast<size_t>(std::min<uint64_t>(size, size_ - offset));
    while (*count < size) {
      const auto length = static_cast<DWORD>(std::min(size - *count, kLongestCall));
      OVERLAPPED place = At(offset + *count);
      DWORD got = 0;
      if (!ReadFile(file_.get(), buffer + *count, length, &got, &place)) {
        return SystemError(name_, GetLastError());
      }
      if (got == 0) break;
      *count += got;
    }
    return Status::Ok();
  }

 private:
  std::filesystem::path name_;
  Handle file_;
  uint64_t size_ = 0;
};

}  // namespace

std::unique_ptr<ScratchFile> ScratchFile::Create(const std::filesystem::path& folder,
                                                 std::string_view prefix, Status* status) {
  static std::atomic<unsigned> counter = 0;
  *status = Status::Ok();
  for (int i = 0; i < kNameTries; ++i) {
    const std::string name = std::string(prefix) + std::to_string(GetCurrentProcessId()) + "-" +
                             std::to_string(++counter) + ".tmp";
    std::filesystem::path path = LongPath(folder / name);
    Handle file(CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, 0, nullptr,
                            CREATE_NEW, FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE,
                            nullptr));
    if (file.valid()) return std::make_unique<VanishingFile>(std::move(path), std::move(file));
    const DWORD error = GetLastError();
    *status = SystemError(path, error);
    if (error != ERROR_FILE_EXISTS && error != ERROR_ALREADY_EXISTS) break;
  }
  return nullptr;
}

}  // namespace kerno
