#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/folders.h"
#include "platform/system.h"
#include "support/environment.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

TEST(FoldersPosix, WithoutAnyAnswerTheUserGetsAPrivateFolder) {
  const std::string name = "kerno-test-" + std::to_string(getpid());
  test::SetVariable("USER", name.c_str());
  for (const char* variable : {"TMP", "TMPDIR", "TEMP"}) unsetenv(variable);
  const fs::path own = fs::path("/tmp") / name;
  for (int i = 0; i < 2; ++i) {  // made, and then found open to everybody
    EXPECT_EQ(TempFolder(), own / "");
    struct stat info {};
    ASSERT_EQ(stat(own.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0700u);
    chmod(own.c_str(), 0777);
  }
  // What others put there before stays out of reach, and so does what they lead to.
  test::WriteBytes(own / "planted", "x");
  test::SetVariable("XDG_CACHE_HOME", "/proc/none");
  EXPECT_FALSE(CurrentSystem().IsOwnFolder(own));
  EXPECT_FALSE(CurrentSystem().MakePrivateFolder(own).ok());
  EXPECT_NE(TempFolder(), own / "");
  chmod(own.c_str(), 0755);
  EXPECT_TRUE(CurrentSystem().IsOwnFolder(own));
  EXPECT_EQ(TempFolder(), own / "");
  fs::remove_all(own);

  // A link that somebody else may have laid is not followed.
  const test::TemporaryFolder folder;
  fs::create_directory_symlink(folder.path(), own);
  test::SetVariable("XDG_CACHE_HOME", (folder / "cache").c_str());
  EXPECT_EQ(TempFolder(), folder / "cache/kerno/tmp/");
  fs::remove(own);
  unsetenv("XDG_CACHE_HOME");
}

TEST(FoldersPosix, SpecialFoldersFollowTheDesktopConventions) {
  const test::TemporaryFolder folder;
  fs::create_directories(folder / "config");
  test::WriteBytes(folder / "config/user-dirs.dirs",
                   "# comment\nXDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\n"
                   "XDG_MUSIC_DIR=\"relative\"\n");
  test::SetVariable("HOME", folder.path().c_str());
  test::SetVariable("XDG_CONFIG_HOME", (folder / "config").c_str());
  test::SetVariable("XDG_DATA_HOME", "relative paths do not count");
  const std::pair<uint32_t, fs::path> kCases[] = {
      {0x00, folder / "Schreibtisch"}, {0x0D, folder / "Music"}, {0x1C, folder / ".local/share"}};
  for (const auto& [id, wanted] : kCases) EXPECT_EQ(SpecialFolder(id), wanted) << id;
  EXPECT_FALSE(fs::exists(folder / "Schreibtisch"));
  EXPECT_EQ(SpecialFolder(0x00 | kCreateSpecialFolder), folder / "Schreibtisch");
  EXPECT_TRUE(fs::is_directory(folder / "Schreibtisch"));

  for (const char* variable : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"}) unsetenv(variable);
  EXPECT_FALSE(SpecialFolder(0x1A).is_relative());  // the user database knows a home
}

}  // namespace
}  // namespace kerno
