#include "platform/posix/private_name.h"

#include <dirent.h>
#include <fcntl.h>
#include <linux/magic.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <ctime>
#include <mutex>
#include <set>
#include <string_view>
#include <tuple>

namespace kerno::posix {
namespace {

constexpr std::string_view kStart = ".kerno-";
constexpr std::string_view kEnd = ".tmp";
constexpr time_t kDay = 24 * 60 * 60;

// The process of a private name, 0 for another name.
pid_t WriterOf(std::string_view name) {
  if (!name.starts_with(kStart) || !name.ends_with(kEnd)) return 0;
  name.remove_prefix(kStart.size());
  pid_t writer = 0;
  unsigned number = 0;
  const auto process = std::from_chars(name.begin(), name.end(), writer);
  if (process.ec != std::errc() || process.ptr == name.end() || *process.ptr != '-') return 0;
  const auto rest = std::from_chars(process.ptr + 1, name.end(), number);
  const bool whole = rest.ec == std::errc() && std::string_view(rest.ptr, name.end()) == kEnd;
  return whole ? std::max(writer, 0) : 0;
}

bool IsSharedByMachines(int folder) {
  constexpr long kOwnMachine[] = {EXT4_SUPER_MAGIC,  XFS_SUPER_MAGIC,       BTRFS_SUPER_MAGIC,
                                  TMPFS_MAGIC,       OVERLAYFS_SUPER_MAGIC, F2FS_SUPER_MAGIC,
                                  MSDOS_SUPER_MAGIC, EXFAT_SUPER_MAGIC,     RAMFS_MAGIC};
  struct statfs info {};
  return fstatfs(folder, &info) != 0 || std::find(std::begin(kOwnMachine), std::end(kOwnMachine),
                                                  info.f_type) == std::end(kOwnMachine);
}

bool IsHeld(int folder, const char* name) {
  const int file = openat(folder, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
  const bool held = file < 0 || (flock(file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK);
  if (file >= 0) close(file);
  return held;
}

void RemoveIfLeft(int folder, const char* name, bool shared) {
  const pid_t writer = WriterOf(name);
  if (writer == 0 || kill(writer, 0) == 0 || errno != ESRCH) return;
  struct stat info {};
  if (fstatat(folder, name, &info, AT_SYMLINK_NOFOLLOW) != 0) return;
  if (!S_ISREG(info.st_mode) || info.st_uid != geteuid()) return;
  if (shared && time(nullptr) - info.st_ctime < kDay) return;
  if (!IsHeld(folder, name)) unlinkat(folder, name, 0);
}

// A number alone may have been another folder's before.
bool IsFirstLook(int folder) {
  static std::mutex lock;
  static std::set<std::tuple<uint32_t, uint32_t, uint64_t, int64_t, uint32_t>> seen;
  struct statx info {};
  if (statx(folder, "", AT_EMPTY_PATH, STATX_INO | STATX_BTIME, &info) != 0) return false;
  const std::lock_guard guard(lock);
  return seen
      .emplace(info.stx_dev_major, info.stx_dev_minor, info.stx_ino, info.stx_btime.tv_sec,
               info.stx_btime.tv_nsec)
      .second;
}

}  // namespace

std::string PrivateName() {
  static std::atomic<unsigned> counter = 0;
  return std::string(kStart) + std::to_string(getpid()) + "-" + std::to_string(++counter) +
         std::string(kEnd);
}

bool MarkAsLive(int file) {
  flock(file, LOCK_EX | LOCK_NB);  // without locks the process's number has to do
  struct stat info {};
  return fstat(file, &info) != 0 || info.st_nlink > 0;
}

void RemoveLeftNames(int folder) {
  if (!IsFirstLook(folder)) return;
  const int listed = openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  DIR* const names = listed < 0 ? nullptr : fdopendir(listed);
  if (!names) {
    if (listed >= 0) close(listed);
    return;
  }
  const bool shared = IsSharedByMachines(folder);
  while (const dirent* entry = readdir(names)) {
    if (std::string_view(entry->d_name).starts_with(kStart)) {
      RemoveIfLeft(folder, entry->d_name, shared);
    }
  }
  closedir(names);
}

}  // namespace kerno::posix
