#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <thread>

#include "platform/file_replacement.h"
#include "platform/held_file.h"
#include "support/child_process.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;
using test::InChild;
using test::ReadBytes;
using test::TemporaryFolder;
using test::WriteBytes;
using Names = std::set<std::string>;

mode_t ModeOf(const fs::path& file) {
  struct stat info {};
  EXPECT_EQ(stat(file.c_str(), &info), 0) << file;
  return info.st_mode & 07777;
}

TEST(FileReplacementPosix, TheModeOfAnExistingFileStaysAndANewOneFollowsTheMask) {
  const TemporaryFolder folder;
  for (const mode_t mode : {0600, 0640, 0666, 0755}) {
    WriteBytes(folder / "old", "old");
    ASSERT_EQ(chmod((folder / "old").c_str(), mode), 0);
    ASSERT_TRUE(ReplaceFile(folder / "old", "new").ok());
    EXPECT_EQ(ModeOf(folder / "old"), mode);
  }
  for (const mode_t mask : {022, 077, 002}) {
    const mode_t before = umask(mask);
    EXPECT_TRUE(ReplaceFile(folder / "new", "new").ok());
    umask(before);
    EXPECT_EQ(ModeOf(folder / "new"), 0666 & ~mask);
    fs::remove(folder / "new");
  }
}

TEST(FileReplacementPosix, ASymbolicLinkStaysAndItsFileIsReplaced) {
  const TemporaryFolder folder;
  fs::create_directory(folder / "deep");
  WriteBytes(folder / "deep/file", "old");
  fs::create_symlink("deep/file", folder / "one");
  fs::create_symlink(folder / "one", folder / "two");
  fs::create_symlink("deep/missing", folder / "dangling");
  for (const char* link : {"one", "two", "dangling"}) {
    EXPECT_TRUE(ReplaceFile(folder / link, link).ok()) << link;
    EXPECT_TRUE(fs::is_symlink(folder / link)) << link;
    EXPECT_EQ(ReadBytes(folder / link), link);
  }
  EXPECT_EQ(ReadBytes(folder / "deep/file"), "two");
  EXPECT_EQ(ReadBytes(folder / "deep/missing"), "dangling");
  EXPECT_EQ(folder.Names(), (Names{"dangling", "deep", "one", "two"}));

  fs::create_symlink("circle", folder / "circle");
  EXPECT_EQ(ReplaceFile(folder / "circle", "x").why, u"the symbolic links lead in a circle");
}

TEST(FileReplacementPosix, PipesAndDevicesAreWrittenThrough) {
  const TemporaryFolder folder;
  const fs::path pipe = folder / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const std::string sent(200000, 'p');
  std::string received;
  std::thread reader([&] { received = ReadBytes(pipe); });
  EXPECT_TRUE(ReplaceFile(pipe, sent).ok());
  reader.join();
  EXPECT_EQ(received, sent);
  EXPECT_TRUE(fs::is_fifo(pipe));
}

// Standard output that the shell sends to a file keeps what stands there (">>").
TEST(FileReplacementPosix, AnOpenFileBehindAProcessLinkIsAppendedTo) {
  const TemporaryFolder folder;
  WriteBytes(folder / "log", "before ");
  EXPECT_EQ(InChild([&] {
              if (dup2(open((folder / "log").c_str(), O_WRONLY | O_APPEND), 1) != 1) return 1;
              return ReplaceFile("/dev/stdout", "after").ok() ? 0 : 2;
            }),
            0);
  EXPECT_EQ(ReadBytes(folder / "log"), "before after");
}

TEST(FileReplacementPosix, PermissionsAreKept) {
  const TemporaryFolder folder;
  ASSERT_EQ(chmod(folder.path().c_str(), 0777), 0);
  fs::create_directory(folder / "closed");
  WriteBytes(folder / "protected", "old");
  ASSERT_EQ(chmod((folder / "protected").c_str(), 0444), 0);
  ASSERT_EQ(chmod((folder / "closed").c_str(), 0555), 0);
  EXPECT_EQ(InChild([&] {
              if (geteuid() == 0 && (setegid(65534) != 0 || seteuid(65534) != 0)) return 1;
              const Status file = ReplaceFile(folder / "protected", "new");
              if (file.failure != Failure::kAccessDenied || file.why != u"no permission") return 2;
              const Status place = ReplaceFile(folder / "closed/new", "new");
              if (place.why != u"no permission to write in its folder") return 3;
              return ReplaceFile(folder / "free", "new").ok() ? 0 : 4;
            }),
            0);
  EXPECT_EQ(ReadBytes(folder / "protected"), "old");
  EXPECT_EQ(folder.Names(), (Names{"closed", "free", "protected"}));
}

// Both come with a signal that would end the process.
TEST(FileReplacementPosix, APipeWithoutReaderAndAFileSizeLimitAreFailures) {
  const TemporaryFolder folder;
  WriteBytes(folder / "file", "old");
  EXPECT_EQ(InChild([&] {
              int ends[2];
              const rlimit limit{1000, 1000};
              if (pipe(ends) != 0 || close(ends[0]) != 0) return 1;
              const Status gone = ReplaceFile("/dev/fd/" + std::to_string(ends[1]), "x");
              if (gone.why != u"the reader of the pipe has gone") return 2;
              if (setrlimit(RLIMIT_FSIZE, &limit) != 0) return 3;
              const Status status = ReplaceFile(folder / "file", std::string(5000, 'x'));
              return status.failure == Failure::kNoSpace ? 0 : 4;
            }),
            0);
  EXPECT_EQ(ReadBytes(folder / "file"), "old");
  EXPECT_EQ(folder.Names(), Names{"file"});
}

constexpr int kMayNotMount = 77;

// Does the work in a process of its own with an empty disk of 64 KB at a place: its exit status.
int WithSmallDisk(const fs::path& where, const std::function<int()>& work) {
  return InChild([&] {
    if (unshare(CLONE_NEWNS) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return kMayNotMount;
    return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                   mount("tmpfs", where.c_str(), "tmpfs", 0, "size=64k") == 0
               ? work()
               : kMayNotMount;
  });
}

// Without the process file system no file without a name can get one later.
TEST(FileReplacementPosix, NeedsNoProcessFileSystemAndAFullDiskLeavesTheOldFile) {
  const TemporaryFolder folder;
  const int unnamed = WithSmallDisk("/proc", [&] {
    for (const char* bytes : {"first", "second"}) {
      if (!ReplaceFile(folder / "file", bytes).ok()) return 2;
      if (ReadBytes(folder / "file") != bytes) return 3;
      Status status;
      auto abandoned = FileReplacement::Create(folder / "file", &status);
      if (!abandoned || !abandoned->Write("third").ok() || folder.Names().size() != 2) return 4;
      abandoned.reset();
      if (ReadBytes(folder / "file") != bytes || folder.Names() != Names{"file"}) return 5;
    }
    return 0;
  });
  const int full = WithSmallDisk(folder.path(), [&] {
    WriteBytes(folder / "file", "old");
    const Status status = ReplaceFile(folder / "file", std::string(1 << 20, 'x'));
    if (status.failure != Failure::kNoSpace) return 2;
    return ReadBytes(folder / "file") == "old" && folder.Names() == Names{"file"} ? 0 : 3;
  });
  if (unnamed == kMayNotMount) GTEST_SKIP() << "this process may not mount";
  EXPECT_EQ(unnamed, 0);
  EXPECT_EQ(full, 0);
}

TEST(FileReplacementPosix, AKilledProcessLeavesTheOldFileAlone) {
  const TemporaryFolder folder;
  WriteBytes(folder / "file", "old");
  test::ChildProcess child([&] {
    Status status;
    const auto file = FileReplacement::Create(folder / "file", &status);
    if (file && file->Write(std::string(100000, 'x')).ok() && write(1, "y\n", 2) == 2) pause();
    return 1;
  });
  EXPECT_EQ(child.ReadLine(), "y");
  child.Signal(SIGKILL);
  EXPECT_EQ(child.Wait(), -SIGKILL);
  EXPECT_EQ(ReadBytes(folder / "file"), "old");
  EXPECT_EQ(folder.Names(), Names{"file"});
}

// Of names for what is not whole yet, those go whose writers are gone.
TEST(FileReplacementPosix, TheNextWriterRemovesWhatKilledOnesLeft) {
  const TemporaryFolder folder, other;
  const pid_t gone = fork();
  if (gone == 0) _exit(0);
  ASSERT_EQ(waitpid(gone, nullptr, 0), gone);
  const std::string dead = ".kerno-" + std::to_string(gone), live = std::to_string(getpid());
  const std::string kNames[] = {
      dead + "-1.tmp",     dead + "-2.tmp",  dead + "-3.tmp", dead + "-x.tmp",
      dead + "-1.tmp.txt", ".kerno-0-1.tmp", ".kerno-.tmp",   ".kerno-" + live + "-999.tmp"};
  for (const std::string& name : kNames) WriteBytes(folder / name, "half");
  fs::remove(folder / kNames[2]);
  fs::create_directory(folder / kNames[2]);
  const int held = open((folder / kNames[1]).c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(flock(held, LOCK_SH), 0);  // as by a writer of another container
  Names wanted(std::begin(kNames) + 1, std::end(kNames));
  wanted.insert("file");
  EXPECT_TRUE(ReplaceFile(folder / "file", "x").ok());
  EXPECT_EQ(folder.Names(), wanted);
  close(held);
  // Without files that have no name a killed process leaves one, which is as good as none.
  const int status = WithSmallDisk("/proc", [&] {
    test::ChildProcess child([&] {
      Status opened;
      const auto file = FileReplacement::Create(other / "file", &opened);
      if (file && write(1, "y\n", 2) == 2) pause();
      return 1;
    });
    if (child.ReadLine() != "y" || other.Names().size() != 1) return 2;
    if (InChild([&] { return ReplaceFile(other / "a", "a").ok() ? 0 : 1; }) != 0) return 3;
    if (other.Names().size() != 2) return 4;  // its writer lives
    child.Signal(SIGKILL);
    if (child.Wait() != -SIGKILL) return 5;
    if (!CreateNewFile(other / "new", "whole").ok()) return 6;
    return CreateNewFile(other / "new", "x").failure == Failure::kSharingViolation &&
                   ReplaceFile(other / "a", "b").ok()
               ? 0
               : 7;
  });
  if (status == kMayNotMount) GTEST_SKIP() << "this process may not mount";
  EXPECT_EQ(status, 0);
  EXPECT_EQ(other.Names(), (Names{"a", "new"}));
}

}  // namespace
}  // namespace kerno
