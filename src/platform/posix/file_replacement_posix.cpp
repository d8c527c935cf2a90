// The bytes of a replacement go to a file without a name (O_TMPFILE) in the target's folder, so
// that a process that is killed leaves nothing. At the end a target that does not exist yet gets
// the finished file as its first name; an existing one cannot be linked over, so the file takes a
// private name and is renamed at once, with signals held back: only a kill that nobody can hold
// back, in the instant between the two calls, leaves that name. Where the file system knows no
// files without a name, the private name is there from the start and only a kill leaves it. Whoever
// writes into the folder next removes such names.
#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

#include "platform/file_replacement.h"
#include "platform/posix/private_name.h"
#include "platform/posix/system_error.h"
#include "platform/posix/unnamed_file.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

constexpr int kMaxLinks = 40;  // symbolic links followed, as many as the kernel follows
constexpr int kNameTries = 100;

class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int fd) : fd_(fd) {}
  Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  ~Descriptor() { Close(); }

  bool valid() const { return fd_ >= 0; }
  int get() const { return fd_; }
  int Close() { return valid() ? close(std::exchange(fd_, -1)) : 0; }

 private:
  int fd_ = -1;
};

// Holds signals back from this thread while it lives.
class SignalsHeld {
 public:
  explicit SignalsHeld(const sigset_t& held) { pthread_sigmask(SIG_BLOCK, &held, &before_); }
  ~SignalsHeld() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  SignalsHeld(const SignalsHeld&) = delete;
  SignalsHeld& operator=(const SignalsHeld&) = delete;

 private:
  sigset_t before_;
};

sigset_t AllSignals() {
  sigset_t all;
  sigfillset(&all);
  return all;
}

// A pipe without a reader and a file beyond the limit answer by a signal that ends the process
// before the call's own error is seen.
sigset_t WriteSignals() {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGPIPE);
  sigaddset(&set, SIGXFSZ);
  return set;
}

// 0, or the errno of the write that failed.
int WriteAll(int fd, std::string_view bytes) {
  const sigset_t signals = WriteSignals();
  const SignalsHeld held(signals);
  while (!bytes.empty()) {
    const ssize_t written = write(fd, bytes.data(), bytes.size());
    if (written >= 0) {
      bytes.remove_prefix(static_cast<size_t>(written));
      continue;
    }
    const int error = errno;
    if (error == EINTR) continue;
    if (error == EPIPE || error == EFBIG) {  // take the signal that came with it
      const timespec now{};
      sigtimedwait(&signals, nullptr, &now);
    }
    return error;
  }
  return 0;
}

// Writes over bytes that stand there, and goes on at the end.
Status RewriteAt(int fd, uint64_t at, std::string_view bytes, const fs::path& target) {
  if (lseek(fd, static_cast<off_t>(at), SEEK_SET) < 0) return SystemError(target, errno);
  if (const int error = WriteAll(fd, bytes)) return SystemError(target, error);
  return lseek(fd, 0, SEEK_END) < 0 ? SystemError(target, errno) : Status::Ok();
}

// 0, or the errno. What has no disk behind it cannot be flushed to one.
int Flush(int fd) {
  if (fsync(fd) == 0 || errno == EINVAL || errno == ENOTSUP || errno == EROFS) return 0;
  return errno;
}

// A device, a pipe, or another thing whose name must stay.
class WrittenThrough final : public FileReplacement {
 public:
  WrittenThrough(fs::path target, Descriptor file)
      : target_(std::move(target)), file_(std::move(file)) {}

  Status Write(std::string_view bytes) override {
    const int error = WriteAll(file_.get(), bytes);
    return error ? SystemError(target_, error) : Status::Ok();
  }

  Status Commit() override {
    if (const int error = Flush(file_.get())) return SystemError(target_, error);
    return file_.Close() == 0 ? Status::Ok() : SystemError(target_, errno);
  }

 private:
  fs::path target_;
  Descriptor file_;
};

// A file that has no name and gets none.
class Unnamed final : public FileReplacement {
 public:
  Unnamed(fs::path target, Descriptor file) : target_(std::move(target)), file_(std::move(file)) {}

  Status Write(std::string_view bytes) override {
    const int error = WriteAll(file_.get(), bytes);
    return error ? SystemError(target_, error) : Status::Ok();
  }
  bool CanRewrite() const override { return true; }
  Status Rewrite(uint64_t at, std::string_view bytes) override {
    return RewriteAt(file_.get(), at, bytes, target_);
  }
  Status Commit() override { return Status::Ok(); }

 private:
  fs::path target_;
  Descriptor file_;
};

// Where a regular file is to stand: its folder, held open, and its name in it.
struct Place {
  Descriptor folder;
  std::string name;
  std::optional<struct stat> old;  // the file that stands there now
};

class RegularFile final : public FileReplacement {
 public:
  RegularFile(fs::path target, Place place)
      : target_(std::move(target)), place_(std::move(place)) {}

  ~RegularFile() override { RemoveName(); }

  Status Open() {
    // An existing file may be more private than a new one: nobody else reads the new bytes before
    // they stand under its name.
    const mode_t mode = place_.old ? 0600 : 0666;
    posix::RemoveLeftNames(place_.folder.get());
    if (access("/proc/self/fd", X_OK) == 0) {
      file_ = Descriptor(openat(place_.folder.get(), ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, mode));
    }
    for (int i = 0; !file_.valid() && i < kNameTries; ++i) {
      std::string name = posix::PrivateName();
      file_ = Descriptor(
          openat(place_.folder.get(), name.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, mode));
      if (!file_.valid() && errno != EEXIST) break;
      if (file_.valid() && posix::MarkAsLive(file_.get())) name_ = std::move(name);
      if (name_.empty()) file_ = Descriptor();
    }
    return file_.valid() ? Status::Ok() : FolderError(errno);
  }

  Status Write(std::string_view bytes) override {
    const int error = WriteAll(file_.get(), bytes);
    return error ? SystemError(target_, error) : Status::Ok();
  }

  bool CanRewrite() const override { return true; }

  Status Rewrite(uint64_t at, std::string_view bytes) override {
    return RewriteAt(file_.get(), at, bytes, target_);
  }

  Status Commit() override {
    if (place_.old && !TakeOverOwnership()) return SystemError(target_, errno);
    if (const int error = Flush(file_.get())) return SystemError(target_, error);
    const SignalsHeld held(AllSignals());
    const bool unnamed = name_.empty();
    if (unnamed && !place_.old && Link(place_.name)) {
      Status closed = Close();
      if (!closed.ok()) unlinkat(place_.folder.get(), place_.name.c_str(), 0);
      return closed;
    }
    if (unnamed && !LinkToPrivateName()) return FolderError(errno);
    // Some file systems report a failed write only here, so the name changes afterwards.
    if (Status closed = Close(); !closed.ok()) return closed;
    if (renameat(place_.folder.get(), name_.c_str(), place_.folder.get(), place_.name.c_str()) !=
        0) {
      return SystemError(target_, errno);
    }
    name_.clear();
    return Status::Ok();
  }

 private:
  Status FolderError(int error) const {
    Status status = SystemError(target_, error);
    if (status.failure == Failure::kAccessDenied && error != EROFS) {
      status.why = u"no permission to write in its folder";
    }
    return status;
  }

  // A foreign owner can be kept by the superuser alone, and a group by its members; who cannot keep
  // them goes on with their own.
  bool TakeOverOwnership() {
    struct stat now {};
    if (fstat(file_.get(), &now) != 0) return false;
    const bool same = now.st_uid == place_.old->st_uid && now.st_gid == place_.old->st_gid;
    if (!same && fchown(file_.get(), place_.old->st_uid, place_.old->st_gid) != 0 &&
        fchown(file_.get(), static_cast<uid_t>(-1), place_.old->st_gid) != 0 && errno != EPERM) {
      return false;
    }
    // Without the set-id bits, which any write to a file takes away.
    return fchmod(file_.get(), place_.old->st_mode & 01777) == 0;
  }

  bool Link(const std::string& name) {
    const std::string self = "/proc/self/fd/" + std::to_string(file_.get());
    return linkat(AT_FDCWD, self.c_str(), place_.folder.get(), name.c_str(), AT_SYMLINK_FOLLOW) ==
           0;
  }

  bool LinkToPrivateName() {
    posix::MarkAsLive(file_.get());
    for (int i = 0; i < kNameTries; ++i) {
      std::string name = posix::PrivateName();
      if (Link(name)) {
        name_ = std::move(name);
        return true;
      }
      if (errno != EEXIST) return false;
    }
    return false;
  }

  Status Close() { return file_.Close() == 0 ? Status::Ok() : SystemError(target_, errno); }

  void RemoveName() {
    if (!name_.empty()) unlinkat(place_.folder.get(), name_.c_str(), 0);
  }

  fs::path target_;
  Place place_;
  Descriptor file_;
  std::string name_;  // the private name while it exists
};

bool OnProcessFileSystem(const fs::path& folder) {
  struct statfs info {};
  return statfs(folder.c_str(), &info) == 0 && info.f_type == PROC_SUPER_MAGIC;
}

fs::path FolderOf(const fs::path& file) {
  return file.has_parent_path() ? file.parent_path() : fs::path(".");
}

// Follows symbolic links, a dangling last one included, to the name of the file that they mean.
// *open_file tells that the way led through a link that stands for a file already open
// (/dev/stdout).
Status FollowLinks(fs::path* path, bool* open_file) {
  const fs::path target = *path;
  for (int i = 0; i < kMaxLinks; ++i) {
    struct stat info {};
    if (lstat(path->c_str(), &info) != 0 || !S_ISLNK(info.st_mode)) return Status::Ok();
    if (OnProcessFileSystem(FolderOf(*path))) {
      struct stat linked {};
      *open_file = stat(path->c_str(), &linked) == 0 && S_ISREG(linked.st_mode);
      if (*open_file) return Status::Ok();
    }
    std::error_code error;
    const fs::path next = fs::read_symlink(*path, error);
    if (error) return SystemError(target, error.value());
    *path = next.is_absolute() ? next : FolderOf(*path) / next;
  }
  return SystemError(target, ELOOP);
}

std::unique_ptr<FileReplacement> OpenThrough(const fs::path& target, int flags, Status* status) {
  Descriptor file(open(target.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY | flags));
  if (!file.valid()) {
    *status = SystemError(target, errno);
    return nullptr;
  }
  return std::make_unique<WrittenThrough>(target, std::move(file));
}

std::unique_ptr<FileReplacement> OpenUnnamed(const fs::path& target, int fd, Status* status) {
  Descriptor file(fcntl(fd, F_DUPFD_CLOEXEC, 0));
  if (!file.valid() || ftruncate(file.get(), 0) != 0 || lseek(file.get(), 0, SEEK_SET) != 0) {
    *status = SystemError(target, errno);
    return nullptr;
  }
  return std::make_unique<Unnamed>(target, std::move(file));
}

Status FindPlace(const fs::path& target, const fs::path& file, Place* place) {
  if (!file.has_filename()) {
    return Status::Error(Failure::kIsFolder, SystemText(target.native()),
                         u"this names a folder, not a file");
  }
  place->name = file.filename().native();
  place->folder = Descriptor(open(FolderOf(file).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  if (!place->folder.valid()) {
    const int error = errno;
    Status status = SystemError(target, error);
    if (error == ENOENT) status.why = u"its folder does not exist";
    return status;
  }
  struct stat info {};
  if (fstatat(place->folder.get(), place->name.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0) {
    place->old = info;
    // A rename would replace a file that its owner protected from writing.
    if (faccessat(place->folder.get(), place->name.c_str(), W_OK, AT_EACCESS) != 0) {
      return SystemError(target, errno);
    }
  } else if (errno != ENOENT) {
    return SystemError(target, errno);
  }
  return Status::Ok();
}

}  // namespace

std::unique_ptr<FileReplacement> FileReplacement::Create(const fs::path& target, Status* status) {
  *status = Status::Ok();
  if (target.empty() || target.native().find('\0') != std::string::npos) {
    *status = Status::Error(Failure::kNotFound, SystemText(target.native()),
                            target.empty() ? u"the file has no name" : u"the name holds a NUL");
    return nullptr;
  }
  if (const int unnamed = posix::UnnamedDescriptor(target); unnamed >= 0) {
    return OpenUnnamed(target, unnamed, status);
  }
  struct stat info {};
  if (stat(target.c_str(), &info) == 0 && !S_ISREG(info.st_mode)) {
    if (S_ISDIR(info.st_mode)) {
      *status = SystemError(target, EISDIR);
      return nullptr;
    }
    return OpenThrough(target, 0, status);
  }
  fs::path file = target;
  bool open_file = false;
  *status = FollowLinks(&file, &open_file);
  if (!status->ok()) return nullptr;
  if (open_file) return OpenThrough(target, O_APPEND, status);  // after what stands there already
  Place place;
  *status = FindPlace(target, file, &place);
  if (!status->ok()) return nullptr;
  auto replacement = std::make_unique<RegularFile>(target, std::move(place));
  *status = replacement->Open();
  if (!status->ok()) return nullptr;
  return replacement;
}

}  // namespace kerno
