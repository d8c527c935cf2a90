#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>

#include "platform/posix/system_error.h"
#include "platform/scratch_file.h"

namespace kerno {
namespace {

class UnnamedFile final : public ScratchFile {
 public:
  UnnamedFile(std::filesystem::path name, int fd) : name_(std::move(name)), fd_(fd) {}
  ~UnnamedFile() override { close(fd_); }
  UnnamedFile(const UnnamedFile&) = delete;
  UnnamedFile& operator=(const UnnamedFile&) = delete;

  Status Append(std::string_view bytes) override {
    uint64_t at = size_;
    while (!bytes.empty()) {
      const ssize_t written = pwrite(fd_, bytes.data(), bytes.size(), static_cast<off_t>(at));
      if (written < 0 && errno == EINTR) continue;
      if (written < 0) return SystemError(name_, errno);
      at += static_cast<size_t>(written);
      bytes.remove_prefix(static_cast<size_t>(written));
    }
    size_ = at;
    return Status::Ok();
  }

  Status Read(uint64_t offset, char* buffer, size_t size, size_t* count) override {
    *count = 0;
    while (*count < size && offset + *count < size_) {
      const ssize_t got =
          pread(fd_, buffer + *count, size - *count, static_cast<off_t>(offset + *count));
      if (got < 0 && errno == EINTR) continue;
      if (got < 0) return SystemError(name_, errno);
      if (got == 0) break;
      *count += static_cast<size_t>(got);
    }
    return Status::Ok();
  }

 private:
  std::filesystem::path name_;
  int fd_;
  uint64_t size_ = 0;
};

}  // namespace

std::unique_ptr<ScratchFile> ScratchFile::Create(const std::filesystem::path& folder,
                                                 std::string_view prefix, Status* status) {
  std::string name = (folder / (std::string(prefix) + "XXXXXX")).native();
  const int fd = mkostemp(name.data(), O_CLOEXEC);
  if (fd < 0) {
    *status = SystemError(name, errno);
    return nullptr;
  }
  unlink(name.c_str());  // whatever happens to the process, the file goes with it
  *status = Status::Ok();
  return std::make_unique<UnnamedFile>(name, fd);
}

}  // namespace kerno
