#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <map>
#include <mutex>
#include <string>
#include <utility>

#include "platform/posix/private_name.h"
#include "platform/posix/system_error.h"
#include "platform/posix/unnamed_file.h"
#include "platform/unnamed_file.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

std::mutex lock;
std::map<fs::path, int> descriptors;  // by the paths that they are shown under

class OpenUnnamedFile final : public UnnamedFile {
 public:
  OpenUnnamedFile(int fd, fs::path shown) : fd_(fd), shown_(std::move(shown)) {
    const std::lock_guard held(lock);
    descriptors[shown_] = fd_;
  }
  ~OpenUnnamedFile() override {
    const std::lock_guard held(lock);
    descriptors.erase(shown_);
    close(fd_);
  }

  fs::path ReadPath() const override { return "/proc/self/fd/" + std::to_string(fd_); }

 private:
  int fd_;
  fs::path shown_;
};

// For file systems that know no files without a name: it has one for an instant.
int OpenAndRemoveName(const fs::path& folder) {
  const fs::path name = folder / posix::PrivateName();
  const int fd = open(name.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0600);
  if (fd >= 0) unlink(name.c_str());
  return fd;
}

}  // namespace

int posix::UnnamedDescriptor(const fs::path& shown) {
  const std::lock_guard held(lock);
  const auto found = descriptors.find(shown);
  return found == descriptors.end() ? -1 : found->second;
}

std::unique_ptr<UnnamedFile> UnnamedFile::Create(const fs::path& folder, const fs::path& shown,
                                                 Status* status) {
  *status = Status::Ok();
  if (access("/proc/self/fd", X_OK) != 0) return nullptr;
  int fd = open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
  if (fd < 0 && (errno == EOPNOTSUPP || errno == EISDIR)) fd = OpenAndRemoveName(folder);
  if (fd < 0) {
    *status = SystemError(folder, errno);
    return nullptr;
  }
  return std::make_unique<OpenUnnamedFile>(fd, shown);
}

}  // namespace kerno
