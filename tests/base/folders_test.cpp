#include "base/folders.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>

#include "support/fake_clock.h"
#include "support/fake_system.h"
#include "support/recording_notices.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

TEST(Folders, TemporaryFolderFollowsTheOrder) {
  test::FakeSystem system;
  system.program = "/programs/kerno/kerno";
  system.temporary = "/C/wInDoWs/TEMP";
  EXPECT_EQ(TempFolder(), fs::path("/programs/kerno/Temp/"));
  system.temporary = "/scratch/";
  EXPECT_EQ(TempFolder(), fs::path("/scratch/"));
  system.temporary = "";
  system.environment = {{u"TMP", u""}, {u"TMPDIR", u"/a/windows"}, {u"TEMP", u"/b"}};
  EXPECT_EQ(TempFolder(), fs::path("/a/windows/"));  // the rule is for the system's own answer
  system.environment[u"TMP"] = u"/first";
  EXPECT_EQ(TempFolder(), fs::path("/first/"));
}

TEST(Folders, WithoutAnyAnswerTheUserGetsAPrivateFolder) {
  const std::string name = "kerno-test-" + std::to_string(getpid());
  setenv("USER", name.c_str(), 1);
  for (const char* variable : {"TMP", "TMPDIR", "TEMP"}) unsetenv(variable);
  const fs::path own = fs::path("/tmp") / name;
  EXPECT_EQ(TempFolder(), own / "");
  struct stat info {};
  ASSERT_EQ(stat(own.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0700u);
  chmod(own.c_str(), 0777);
  EXPECT_EQ(TempFolder(), own / "");
  ASSERT_EQ(stat(own.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0700u);
  fs::remove(own);

  // A link that somebody else may have laid is not followed.
  const test::TemporaryFolder folder;
  fs::create_directory_symlink(folder.path(), own);
  setenv("XDG_CACHE_HOME", (folder / "cache").c_str(), 1);
  EXPECT_EQ(TempFolder(), folder / "cache/kerno/tmp/");
  fs::remove(own);
  unsetenv("XDG_CACHE_HOME");
}

TEST(Folders, NothingKnownStillAnswers) {
  test::FakeSystem system;
  system.private_folders = false;
  EXPECT_EQ(TempFolder(), fs::path("/nowhere/"));
  system.environment[u"USER"] = u"../../etc";
  system.private_folders = true;
  EXPECT_EQ(TempFolder(), fs::path("/tmp/___/"));
  std::error_code error;
  fs::remove("/tmp/___", error);
  EXPECT_EQ(SpecialFolder(0x1A), fs::path());
}

TEST(Folders, WorkFolderIsOneForEachDay) {
  const test::TemporaryFolder folder;
  test::FakeSystem system;
  test::FakeClock clock;
  test::RecordingNotices notices;
  system.temporary = folder / "t";
  EXPECT_EQ(WorkFolder(), folder / "t/Quenkit.tmp/20261121/");
  clock.seconds += 24 * 60 * 60;
  EXPECT_EQ(WorkFolder(), folder / "t/Quenkit.tmp/20261122/");
  EXPECT_TRUE(fs::is_directory(folder / "t/Quenkit.tmp/20261121"));
  EXPECT_TRUE(notices.messages.empty());

  test::WriteBytes(folder / "file", "x");
  system.temporary = folder / "file";
  system.program = folder / "kerno";
  EXPECT_EQ(WorkFolder(), folder / "Temp/Quenkit.tmp/20261122/");
  EXPECT_TRUE(fs::is_directory(folder / "Temp/Quenkit.tmp/20261122"));
  system.program = "/proc/kerno";
  system.cache = folder / "c";
  EXPECT_EQ(WorkFolder(), folder / "c/Quenkit.tmp/20261122/");
  EXPECT_TRUE(fs::is_directory(folder / "c/Quenkit.tmp/20261122"));
}

TEST(Folders, CreatesEveryLevelOrNamesTheOneThatFails) {
  const test::TemporaryFolder folder;
  test::RecordingNotices notices;
  EXPECT_TRUE(CreateFolderPath(folder / "a/b/c/"));
  EXPECT_TRUE(CreateFolderPath(folder / "a/b"));
  EXPECT_TRUE(notices.messages.empty());
  test::WriteBytes(folder / "file", "x");
  EXPECT_FALSE(CreateFolderPath(folder / "file/x/y"));
  EXPECT_FALSE(CreateFolderPath(folder / "file"));
  EXPECT_FALSE(CreateFolderPath(""));
  ASSERT_EQ(notices.messages.size(), 3u);
  EXPECT_EQ(notices.messages[0], u"Can't create " + (folder / "file/x").u16string());
}

TEST(Folders, SpecialFoldersFollowTheDesktopConventions) {
  const test::TemporaryFolder folder;
  fs::create_directories(folder / "config");
  test::WriteBytes(folder / "config/user-dirs.dirs",
                   "# comment\nXDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\n"
                   "XDG_DOCUMENTS_DIR=\"/data/docs\"\nXDG_MUSIC_DIR=\"relative\"\n");
  setenv("HOME", folder.path().c_str(), 1);
  setenv("XDG_CONFIG_HOME", (folder / "config").c_str(), 1);
  setenv("XDG_DATA_HOME", "relative paths do not count", 1);
  EXPECT_EQ(SpecialFolder(0x00), folder / "Schreibtisch");
  EXPECT_EQ(SpecialFolder(0x05), fs::path("/data/docs"));
  EXPECT_EQ(SpecialFolder(0x0D), folder / "Music");
  EXPECT_EQ(SpecialFolder(0x1A), folder / "config");
  EXPECT_EQ(SpecialFolder(0x1C), folder / ".local/share");
  EXPECT_EQ(SpecialFolder(0x7777), fs::path());
  EXPECT_FALSE(fs::exists(folder / "Schreibtisch"));
  EXPECT_EQ(SpecialFolder(0x00 | kCreateSpecialFolder), folder / "Schreibtisch");
  EXPECT_TRUE(fs::is_directory(folder / "Schreibtisch"));

  for (const char* variable : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"}) unsetenv(variable);
  EXPECT_FALSE(SpecialFolder(0x1A).is_relative());  // the user database knows a home
}

}  // namespace
}  // namespace kerno
