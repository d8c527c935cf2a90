#include "base/folders.h"

#include <gtest/gtest.h>

#include "support/fake_clock.h"
#include "support/fake_system.h"
#include "support/places.h"
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
  system.program = test::kUnwritableFolder / "kerno";
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
  EXPECT_EQ(MakeFolders(folder / "file").why, u"a file of that name stands there");
}

}  // namespace
}  // namespace kerno
