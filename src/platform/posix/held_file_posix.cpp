// Two kinds of advisory lock exist side by side and do not see each other: those of flock() and
// those of fcntl(). Both are taken, so that a program that uses either is waited for. Of the second
// kind it is the one that belongs to the open file (F_OFD_SETLK): the classic one is dropped when
// any descriptor of the file is closed anywhere in the process.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <utility>

#include "platform/file_replacement.h"
#include "platform/held_file.h"
#include "platform/posix/private_name.h"
#include "platform/posix/system_error.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

class PosixHeldFile final : public HeldFile {
 public:
  PosixHeldFile(fs::path path, int fd) : path_(std::move(path)), fd_(fd) {}
  ~PosixHeldFile() override { close(fd_); }
  PosixHeldFile(const PosixHeldFile&) = delete;
  PosixHeldFile& operator=(const PosixHeldFile&) = delete;

  Status Read(std::string* bytes, size_t most) override {
    bytes->clear();
    struct stat info {};
    if (fstat(fd_, &info) != 0) return SystemError(path_, errno);
    if (!S_ISREG(info.st_mode)) return Status::Ok();
    bytes->resize(std::min(static_cast<size_t>(info.st_size) + 1, most));  // 1 to meet the end
    size_t have = 0;
    while (have < most) {
      if (have == bytes->size()) bytes->resize(std::min(2 * have, most));
      const ssize_t got =
          pread(fd_, bytes->data() + have, bytes->size() - have, static_cast<off_t>(have));
      if (got < 0 && errno == EINTR) continue;
      if (got < 0) {
        const int error = errno;
        bytes->clear();
        return SystemError(path_, error);
      }
      if (got == 0) break;
      have += static_cast<size_t>(got);
    }
    bytes->resize(have);
    return Status::Ok();
  }

  Status ReadPiece(uint64_t offset, size_t about, std::string* bytes) override {
    struct stat info {};
    if (fstat(fd_, &info) != 0) return SystemError(path_, errno);
    if (!S_ISREG(info.st_mode)) return Status::Ok();
    const size_t before = bytes->size();
    bytes->resize(before + about);
    ssize_t got = 0;
    do {
      got = pread(fd_, bytes->data() + before, about, static_cast<off_t>(offset));
    } while (got < 0 && errno == EINTR);
    const int error = errno;
    bytes->resize(before + static_cast<size_t>(std::max<ssize_t>(got, 0)));
    return got < 0 ? SystemError(path_, error) : Status::Ok();
  }

 private:
  fs::path path_;
  int fd_;
};

// 0, or the errno of the lock that was refused. A file system without locks holds nobody out.
int Lock(int fd, Deny deny) {
  struct flock range {};
  range.l_type = deny == Deny::kAll ? F_WRLCK : F_RDLCK;
  range.l_whence = SEEK_SET;
  if (fcntl(fd, F_OFD_SETLK, &range) != 0 && (errno == EAGAIN || errno == EACCES)) return EAGAIN;
  if (::flock(fd, (deny == Deny::kAll ? LOCK_EX : LOCK_SH) | LOCK_NB) != 0 &&
      errno == EWOULDBLOCK) {
    return EWOULDBLOCK;
  }
  return 0;
}

Status Held(const fs::path& path) {
  return Status::Error(Failure::kSharingViolation, SystemText(path.native()),
                       u"another process holds the file");
}

// Whether the path still names the open file: who waited for a lock may hold a file that was
// replaced meanwhile. 0 where it does, ESTALE where not, or why that cannot be told.
int CheckName(const fs::path& path, const struct stat& open_file) {
  struct stat named {};
  if (stat(path.c_str(), &named) != 0) return errno == ENOENT ? ESTALE : errno;
  return named.st_dev == open_file.st_dev && named.st_ino == open_file.st_ino ? 0 : ESTALE;
}

}  // namespace

Status PeekFile(const fs::path& path, std::string* bytes, size_t most) {
  bytes->clear();
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  return fd < 0 ? SystemError(path, errno) : PosixHeldFile(path, fd).Read(bytes, most);
}

std::unique_ptr<HeldFile> HeldFile::Open(const fs::path& path, Deny deny, Status* status) {
  *status = Status::Ok();
  if (path.native().find('\0') != std::string::npos) {
    *status = SystemError(path, ENOENT);
    return nullptr;
  }
  const int access = deny == Deny::kAll ? O_RDWR : O_RDONLY;
  for (;;) {
    const int fd = open(path.c_str(), access | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (fd < 0) {
      *status = SystemError(path, errno);
      return nullptr;
    }
    auto file = std::make_unique<PosixHeldFile>(path, fd);
    struct stat info {};
    if (fstat(fd, &info) != 0 || S_ISDIR(info.st_mode)) {
      *status = SystemError(path, S_ISDIR(info.st_mode) ? EISDIR : errno);
      return nullptr;
    }
    if (!S_ISREG(info.st_mode)) return file;  // a device or a pipe: nothing to hold
    if (Lock(fd, deny) != 0) {
      *status = Held(path);
      return nullptr;
    }
    const int error = CheckName(path, info);
    if (error == 0) return file;
    if (error == ESTALE) continue;
    *status = SystemError(path, error);
    return nullptr;
  }
}

namespace {

int WriteAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(fd, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return errno;
    bytes.remove_prefix(static_cast<size_t>(written));
  }
  return 0;
}

Status ExistsAlready(const fs::path& path) {
  return Status::Error(Failure::kSharingViolation, SystemText(path.native()), u"it exists already");
}

// A file without a name gets it when it is whole. Nothing when the file system knows no such files.
std::optional<Status> CreateUnnamedFirst(const fs::path& path, std::string_view bytes) {
  const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
  const int fd = open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666);
  if (fd < 0) return std::nullopt;
  const std::string self = "/proc/self/fd/" + std::to_string(fd);
  int error = WriteAll(fd, bytes);
  if (error == 0 && !bytes.empty() && fsync(fd) != 0) error = errno;
  bool known = true;
  if (error == 0 &&
      linkat(AT_FDCWD, self.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) != 0) {
    error = errno;
    known = error == EEXIST;
  }
  close(fd);
  if (!known) return std::nullopt;
  if (error == 0) return Status::Ok();
  return error == EEXIST ? ExistsAlready(path) : SystemError(path, error);
}

// Gives a file its name only where nothing stands: 0 or the errno. Some file systems know no second
// name for a file, some no such renaming.
int NameNew(const fs::path& from, const fs::path& to) {
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
  if (errno != EINVAL && errno != ENOSYS) return errno;
  if (link(from.c_str(), to.c_str()) != 0) return errno;
  unlink(from.c_str());
  return 0;
}

// The file is whole under a private name before it gets its own.
Status CreateNamedFirst(const fs::path& path, std::string_view bytes) {
  const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
  const fs::path fresh = folder / posix::PrivateName();
  const int fd = open(fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (fd < 0) return SystemError(path, errno);
  int error = posix::MarkAsLive(fd) ? WriteAll(fd, bytes) : ENOENT;
  if (error == 0 && !bytes.empty() && fsync(fd) != 0) error = errno;
  if (close(fd) != 0 && error == 0) error = errno;
  if (error == 0) error = NameNew(fresh, path);
  if (error == 0) return Status::Ok();
  unlink(fresh.c_str());
  return error == EEXIST ? ExistsAlready(path) : SystemError(path, error);
}

}  // namespace

Status CreateNewFile(const fs::path& path, std::string_view bytes) {
  if (auto done = CreateUnnamedFirst(path, bytes)) return *std::move(done);
  return CreateNamedFirst(path, bytes);
}

Status ChangeFile(const fs::path& path, IfMissing if_missing,
                  const std::function<std::optional<std::string>(std::string_view)>& change) {
  constexpr int kTries = 100;  // each ends with another process creating or removing the file
  Status status;
  for (int i = 0; i < kTries; ++i) {
    const auto file = HeldFile::Open(path, Deny::kAll, &status);
    if (file) {
      std::string bytes;
      if (status = file->Read(&bytes); !status.ok()) return status;
      const std::optional<std::string> changed = change(bytes);
      return changed ? ReplaceFile(path, *changed) : Status::Ok();
    }
    if (status.failure != Failure::kNotFound || if_missing == IfMissing::kFail) return status;
    const std::optional<std::string> fresh = change({});
    if (!fresh) return Status::Ok();
    std::error_code error;
    // A link whose file is missing keeps pointing, and its file is made.
    if (fs::is_symlink(path, error)) return ReplaceFile(path, *fresh);
    status = CreateNewFile(path, *fresh);
    if (status.failure != Failure::kSharingViolation) return status;
  }
  return status;
}

Status AppendToFile(const fs::path& path, std::string_view start, std::string_view bytes) {
  for (;;) {
    const int fd = open(path.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC | O_NOCTTY, 0666);
    if (fd < 0) return SystemError(path, errno);
    struct stat info {};
    if (Lock(fd, Deny::kAll) != 0) {
      close(fd);
      return Held(path);
    }
    int error = fstat(fd, &info) == 0 ? CheckName(path, info) : errno;
    if (error == ESTALE) {
      close(fd);
      continue;
    }
    if (error == 0 && info.st_size == 0) error = WriteAll(fd, start);
    if (error == 0) error = WriteAll(fd, bytes);
    if (close(fd) != 0 && error == 0) error = errno;
    return error == 0 ? Status::Ok() : SystemError(path, error);
  }
}

}  // namespace kerno
