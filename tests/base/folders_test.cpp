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
  system.private_folders = false;
  EXPECT_EQ(TempFolder(), fs::path("/nowhere/"));
  system.environment[u"USER"] = u"../../etc";
  system.private_folders = true;
  EXPECT_EQ(TempFolder(), fs::path("/tmp/___/"));
  std::error_code error;
  fs::remove("/tmp/___", error);
  // The rule about "Windows" is for the system's own answer.
  system.environment = {{u"TMP", u""}, {u"TMPDIR", u"/a/windows"}, {u"TEMP", u"/b"}};
  EXPECT_EQ(TempFolder(), fs::path("/a/windows/"));
  system.program = "/programs/kerno/kerno";
  system.temporary = "/C/wInDoWs/TEMP";
  EXPECT_EQ(TempFolder(), fs::path("/programs/kerno/Temp/"));
}

TEST(Folders, WorkFolderIsOneForEachDay) {
  const test::TemporaryFolder folder;
  test::FakeSystem system;
  test::FakeClock clock;
  test::WriteBytes(folder / "file", "x");
  const fs::path kCases[][3] = {
      // temporary folder, program, work folder
      {folder / "t", folder / "kerno", folder / "t/Quenkit.tmp/20261121/"},
      {folder / "file", folder / "kerno", folder / "Temp/Quenkit.tmp/20261122/"},
      {folder / "file", test::kUnwritableFolder / "kerno", folder / "c/Quenkit.tmp/20261123/"}};
  system.cache = folder / "c";
  for (const auto& [temporary, program, wanted] : kCases) {
    system.temporary = temporary;
    system.program = program;
    EXPECT_EQ(WorkFolder(), wanted);
    EXPECT_TRUE(fs::is_directory(wanted)) << wanted;
    clock.seconds += 24 * 60 * 60;
  }
  system.program.clear();  // as where it cannot be told
  EXPECT_EQ(WorkFolder(), folder / "c/Quenkit.tmp/20261124/");
  system.cache.clear();
  EXPECT_EQ(WorkFolder(), fs::path());
}

TEST(Folders, InASharedFolderTheUserGetsAPrivateOneOrNone) {
  const test::TemporaryFolder folder;
  test::FakeSystem system;
  test::FakeClock clock;
  test::RecordingNotices notices;
  system.environment = {{u"TMPDIR", folder.path().u16string()}, {u"USER", u"me"}};
  EXPECT_EQ(OwnTempFolder(), folder / "");
  system.own_folders = false;
  EXPECT_EQ(OwnTempFolder(), folder / "me/");
  EXPECT_EQ(WorkFolder(), folder / "me/Quenkit.tmp/20261121/");
  EXPECT_EQ(TempFolder(), folder / "");
  fs::remove_all(folder / "me");
  test::WriteBytes(folder / "me", "somebody else's");
  EXPECT_EQ(OwnTempFolder(), folder / "kerno-someone/");
  system.cache = folder / "cache";
  EXPECT_EQ(OwnTempFolder(), folder / "cache/tmp/");
  system.private_folders = false;
  EXPECT_EQ(OwnTempFolder(), fs::path());
  system.environment.clear();
  EXPECT_EQ(OwnTempFolder(), fs::path());
}

TEST(Folders, CreatesEveryLevelOrNamesTheOneThatFails) {
  const test::TemporaryFolder folder;
  test::RecordingNotices notices;
  for (const char* name : {"a/b/c/", "a/b"}) EXPECT_TRUE(CreateFolderPath(folder / name));
  EXPECT_TRUE(notices.messages.empty());
  test::WriteBytes(folder / "file", "x");
  EXPECT_FALSE(CreateFolderPath(folder / "file/x/y"));
  EXPECT_FALSE(CreateFolderPath({}));
  ASSERT_EQ(notices.messages.size(), 2u);
  EXPECT_EQ(notices.messages[0], u"Can't create " + (folder / "file/x").u16string());
}

}  // namespace
}  // namespace kerno
