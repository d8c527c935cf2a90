#include "base/settings_places.h"

#include <chrono>

#include "base/profile_store.h"
#include "base/registry_access.h"
#include "base/text.h"
#include "support/places.h"
#include "support/settings_fixture.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;
using test::WriteBytes;

class SettingsPlacesTest : public test::SettingsFixture {};

TEST_F(SettingsPlacesTest, TriesThePlacesInOrder) {
  fs::create_directories(folder_ / "prog");
  system_.program = folder_ / "prog/kerno";
  const auto expect = [&](const fs::path& folder, IniBaseReason reason) {
    Restart();
    EXPECT_EQ(process_->Base().folder, folder);
    EXPECT_EQ(process_->Base().reason, reason) << folder;
  };
  system_.config.clear();
  system_.system_place = folder_ / "prog";
  expect(folder_ / "tmp/Quenkit_Setting", IniBaseReason::kTemporaryFolder);
  system_.config = folder_ / "config";
  expect(folder_ / "config/Quenkit_Setting", IniBaseReason::kConfigFolder);
  system_.system_place.clear();
  expect(folder_ / "prog/Temp/Quenkit_Setting", IniBaseReason::kTempBesideProgram);
  EXPECT_TRUE(fs::is_directory(folder_ / "prog/Temp/Quenkit_Setting"));
  fs::create_directories(folder_ / "prog/Quenkit_Setting");
  expect(folder_ / "prog/Quenkit_Setting", IniBaseReason::kBesideProgram);
  EXPECT_TRUE(WriteUserString(u"Software\\Quenkit\\Quenkit", u"IniFullBase", u"/elsewhere").ok());
  expect("/elsewhere", IniBaseReason::kOverride);
  EXPECT_TRUE(WriteUserString(u"Software\\Quenkit", u"", u"Other").ok());
  expect(folder_ / "prog/Quenkit_Setting", IniBaseReason::kBesideProgram);
  EXPECT_EQ(process_->BaseName(), u"Other");
  std::u16string shown;
  EXPECT_TRUE(ReadUserString(u"Software\\Quenkit", u"RegKey_Base は", &shown).ok());
  EXPECT_EQ(shown, u"Other");
  EXPECT_TRUE(ReadUserString(u"Software\\Other\\Quenkit", u"IniFullBase は", &shown).ok());
  EXPECT_EQ(shown, PathText(folder_ / "prog/Quenkit_Setting"));
}

TEST_F(SettingsPlacesTest, ResolvesNames) {
  const fs::path base = folder_ / "config/Quenkit_Setting";
  const std::pair<std::u16string, fs::path> kCases[] = {
      {u"Quenkit", base / "Quenkit.ini"}, {u"a.INI", base / "a.INI"},
      {u"a.b", base / "a.b.ini"},         {u"/x/y", "/x/y.ini"},
      {u"x\\y.ini", "x/y.ini"},           {u"x/a.InI", "x/a.InI"}};
  for (const auto& [name, path] : kCases) EXPECT_EQ(ResolveIniPath(name), path);
}

TEST_F(SettingsPlacesTest, StoresFollowTheListOfCases) {
  const fs::path base = folder_ / "config/Quenkit_Setting";
  EXPECT_EQ(ProfileStore(u"Some").profile_path(), PathText(base / "Some.ini"));
  EXPECT_EQ(ProfileStore(u"").profile_path(), PathText(folder_ / "config/kerno.ini"));
  system_.system_place.clear();
  EXPECT_EQ(ProfileStore(u"").profile_path(), PathText(folder_ / "bin/kerno.ini"));
  process_->application = Application{u"", u"Quenkit.ini"};
  EXPECT_EQ(ProfileStore(u"").profile_path(), PathText(base / "Quenkit.ini"));
  EXPECT_EQ(process_->unnamed_stores, 3);
  const std::u16string log = DumpedText();
  EXPECT_NE(log.find(u"Ｎｕｌｌのため \"Env__3\" を使用\r\n"), log.npos) << Utf16ToUtf8(log);
}

TEST_F(SettingsPlacesTest, AFolderThatCannotBeWrittenSendsTheFileToTheTemporaryFolder) {
  const std::u16string name = PathText(test::kUnwritableFolder / "Quenkit");
  IniStore store(name);
  EXPECT_TRUE(store.displaced());
  EXPECT_EQ(store.profile_path(), PathText(folder_ / "tmp/Quenkit.ini"));
  EXPECT_TRUE(store.WriteInt(u"a", u"b", 1).ok());
  EXPECT_EQ(IniStore(name).GetInt(u"a", u"b", 0), 1);
}

TEST_F(SettingsPlacesTest, TheTestFileTakesAnotherNameWhenItsOwnIsTaken) {
  const fs::path place = folder_ / "place";
  fs::create_directories(place);
  for (const char* name : {"WriteTst.tmp", "WriteTst.tmp.tmp", "WriteTst.tmp_123456_9.tmp",
                           "WriteTst.tmp_12345x_9.tmp", "WriteTst.tmpx", "WriteTst.tmp_.tmp"}) {
    WriteBytes(place / name, "x");
  }
  EXPECT_TRUE(CanWriteFolder(place));
  EXPECT_EQ(std::distance(fs::directory_iterator(place), {}), 6);

  // Leftovers go after ten days; what only resembles them stays.
  for (const auto& entry : fs::directory_iterator(place)) {
    fs::last_write_time(entry, fs::file_time_type::clock::now() - std::chrono::hours(24 * 10 + 1));
  }
  EXPECT_TRUE(CanWriteFolder(place));
  EXPECT_EQ(std::distance(fs::directory_iterator(place), {}), 6);  // once per process
  Restart();
  EXPECT_TRUE(CanWriteFolder(place));
  EXPECT_FALSE(fs::exists(place / "WriteTst.tmp"));
  EXPECT_FALSE(fs::exists(place / "WriteTst.tmp.tmp"));
  EXPECT_FALSE(fs::exists(place / "WriteTst.tmp_123456_9.tmp"));
  EXPECT_EQ(std::distance(fs::directory_iterator(place), {}), 3);
}

}  // namespace
}  // namespace kerno
