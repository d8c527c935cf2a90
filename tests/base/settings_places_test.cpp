#include "base/settings_places.h"

#include <chrono>

#include "base/profile_store.h"
#include "base/registry_access.h"
#include "base/text.h"
#include "support/settings_fixture.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

class SettingsPlacesTest : public test::SettingsFixture {};

TEST_F(SettingsPlacesTest, TheRegistryNamesTheFolderUnderAKeyThatItNamesToo) {
  EXPECT_TRUE(WriteUserString(u"Software\\Quenkit\\Quenkit", u"IniFullBase", u"/elsewhere").ok());
  EXPECT_EQ(process_->Base().folder, "/elsewhere");
  EXPECT_TRUE(WriteUserString(u"Software\\Quenkit", u"", u"Other").ok());
  Restart();
  const fs::path base = folder_ / "config/Quenkit_Setting";
  EXPECT_EQ(process_->Base().folder, base);
  std::u16string shown;
  EXPECT_TRUE(ReadUserString(u"Software\\Quenkit", u"RegKey_Base は", &shown).ok());
  EXPECT_EQ(shown, u"Other");
  EXPECT_TRUE(ReadUserString(u"Software\\Other\\Quenkit", u"IniFullBase は", &shown).ok());
  EXPECT_EQ(shown, PathText(base));
}

TEST_F(SettingsPlacesTest, NamesOfStoresBecomePaths) {
  const fs::path base = folder_ / "config/Quenkit_Setting";
  const std::pair<std::u16string, fs::path> kCases[] = {
      {u"a.INI", base / "a.INI"}, {u"a.b", base / "a.b.ini"}, {u"x\\y", "x/y.ini"}};
  for (const auto& [name, path] : kCases) EXPECT_EQ(ResolveIniPath(name), path);

  EXPECT_EQ(ProfileStore(u"Some").profile_path(), PathText(base / "Some.ini"));
  EXPECT_EQ(ProfileStore(u"").profile_path(), PathText(folder_ / "config/kerno.ini"));
  system_.system_place.clear();
  EXPECT_EQ(ProfileStore(u"").profile_path(), PathText(folder_ / "bin/kerno.ini"));
}

TEST_F(SettingsPlacesTest, TheTestFileTakesAnotherNameAndLeftoversGo) {
  const fs::path place = folder_ / "place";
  fs::create_directories(place);
  const auto count = [&] { return std::distance(fs::directory_iterator(place), {}); };
  for (const char* name : {"WriteTst.tmp", "WriteTst.tmp.tmp", "WriteTst.tmp_123456_9.tmp",
                           "WriteTst.tmp_12345x_9.tmp", "WriteTst.tmpx", "WriteTst.tmp_.tmp"}) {
    test::WriteBytes(place / name, "x");
  }
  for (const char* name : {"WriteTst.tmp_123456_8.tmp", "WriteTst.tmp_.txt"}) {
    test::WriteBytes(place / name, "");  // as a killed process leaves it, if it has the name
  }
  EXPECT_TRUE(CanWriteFolder(place));
  EXPECT_EQ(count(), 7);
  fs::remove(place / "WriteTst.tmp_.txt");
  for (const auto& entry : fs::directory_iterator(place)) {
    fs::last_write_time(entry, fs::file_time_type::clock::now() - std::chrono::hours(24 * 10 + 1));
  }
  EXPECT_TRUE(CanWriteFolder(place));
  EXPECT_EQ(count(), 6);  // once per process
  Restart();
  EXPECT_TRUE(CanWriteFolder(place));
  EXPECT_EQ(count(), 3);  // what only resembles them stays
  EXPECT_TRUE(fs::exists(place / "WriteTst.tmp_12345x_9.tmp"));
}

}  // namespace
}  // namespace kerno
