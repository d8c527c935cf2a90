#include "setup/installed_files.h"

#include <gtest/gtest.h>

#include <map>

#include "platform/held_file.h"
#include "setup/settings_files.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;
using Files = std::map<std::string, std::string>;

void Write(const fs::path& folder, const Files& files) {
  for (const auto& [name, bytes] : files) {
    fs::create_directories((folder / name).parent_path());
    test::WriteBytes(folder / name, bytes);
  }
}

// Everything below a folder; folders have a "/" at the end of their names.
Files FilesIn(const fs::path& folder) {
  Files files;
  if (!fs::exists(folder)) return files;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    const std::string name = entry.path().lexically_relative(folder).generic_string();
    if (entry.is_directory()) {
      files[name + "/"];
    } else {
      files[name] = test::ReadBytes(entry.path());
    }
  }
  return files;
}

const std::string kOldList = "README.md\ndocs/gone.md\ndocs/kept.md\nkerno.exe\nuninstall.exe\n";
const Files kOld = {{"installed.txt", kOldList}, {"README.md", "old"}, {"docs/gone.md", "old"},
                    {"docs/kept.md", "old"},     {"kerno.exe", "old"}, {"uninstall.exe", "old"}};
const Files kNew = {
    {"installed.txt", "README.md\ndocs/kept.md\nexamples/a/b.txt\nkerno.exe\nuninstall.exe\n"},
    {"README.md", "new"},
    {"docs/kept.md", "new"},
    {"examples/a/b.txt", "new"},
    {"kerno.exe", "new"},
    {"uninstall.exe", "new"}};

class InstalledFiles : public testing::Test {
 protected:
  SetupOutcome Place(const Files& files) {
    Write(staged_, files);
    const SetupOutcome outcome = PlaceFiles(staged_, folder_).outcome;
    EXPECT_FALSE(fs::exists(staged_));
    return outcome;
  }

  // An upgrade that fails leaves everything as it was.
  void ExpectNothingDone(SetupOutcome why) {
    const Files before = FilesIn(folder_);
    EXPECT_EQ(Place(kNew), why);
    EXPECT_EQ(FilesIn(folder_), before);
  }

  const test::TemporaryFolder temporary_;
  const fs::path folder_ = temporary_.path() / fs::path(u"Kerno 花子");
  const fs::path staged_ = folder_ / "kerno-setup.tmp";
};

TEST_F(InstalledFiles, AnUpgradeReplacesTheListedAndNothingElse) {
  Write(folder_, kOld);
  Write(folder_, {{"mine.txt", "mine"}, {"Temp/Quenkit_Setting/Quenkit.ini", "mine"}});
  ASSERT_EQ(Place(kNew), SetupOutcome::kDone);
  Files expected = kNew;
  expected.merge(Files{{"docs/", ""},
                       {"examples/", ""},
                       {"examples/a/", ""},
                       {"mine.txt", "mine"},
                       {"Temp/", ""},
                       {"Temp/Quenkit_Setting/", ""},
                       {"Temp/Quenkit_Setting/Quenkit.ini", "mine"}});
  EXPECT_EQ(FilesIn(folder_), expected);
  EXPECT_EQ(RemoveFiles(folder_).outcome, SetupOutcome::kDone);
  EXPECT_EQ(FilesIn(folder_), (Files{{"mine.txt", "mine"},
                                     {"Temp/", ""},
                                     {"Temp/Quenkit_Setting/", ""},
                                     {"Temp/Quenkit_Setting/Quenkit.ini", "mine"}}));
  EXPECT_EQ(RemoveFiles(folder_).outcome, SetupOutcome::kNotInstalled);
}

TEST_F(InstalledFiles, LeavesNoFolderBehind) {
  ASSERT_EQ(Place(kNew), SetupOutcome::kDone);
  fs::create_directories(folder_ / "Temp/Quenkit_Setting");
  RemoveEmptySettingsFolders(folder_);
  ASSERT_EQ(RemoveFiles(folder_).outcome, SetupOutcome::kDone);
  EXPECT_FALSE(fs::exists(folder_));
}

TEST_F(InstalledFiles, KeepsTheOldVersionWholeWhereTheNewOneCannotStand) {
  Write(folder_, kOld);
  {
    Status status;
    const auto running = HeldFile::Open(folder_ / "kerno.exe", Deny::kWrite, &status);
    ASSERT_TRUE(running);
    EXPECT_EQ(CheckPrograms(folder_).outcome, SetupOutcome::kInUse);
    ExpectNothingDone(SetupOutcome::kInUse);
    const Files before = FilesIn(folder_);
    EXPECT_EQ(RemoveFiles(folder_).outcome, SetupOutcome::kInUse);
    EXPECT_EQ(FilesIn(folder_), before);
  }
  Write(folder_, {{"examples", "a file where a folder is to be"}});  // found after others moved
  ExpectNothingDone(SetupOutcome::kNotWritable);
  fs::remove(folder_ / "examples");
  Write(folder_, {{"examples/a/b.txt", "the user's"}});
  ExpectNothingDone(SetupOutcome::kForeignFile);
  fs::remove_all(folder_ / "examples");
  EXPECT_EQ(Place(kNew), SetupOutcome::kDone);
}

TEST_F(InstalledFiles, AStoppedUpgradeIsTakenUpAgain) {
  Files half = kOld;
  half.erase("kerno.exe");
  Write(folder_, half);
  Write(folder_ / "kerno-setup.old", {{"kerno.exe", "old"}, {"README.md", "older"}});
  Write(folder_, {{"examples", "in the way"}});
  EXPECT_EQ(Place(kNew), SetupOutcome::kNotWritable);
  fs::remove(folder_ / "examples");
  Files expected = kOld;
  expected["docs/"];
  EXPECT_EQ(FilesIn(folder_), expected);
}

TEST_F(InstalledFiles, AListCannotNameFilesElsewhere) {
  Write(temporary_.path(), {{"precious", "mine"}});
  const std::string absolute = (temporary_.path() / "precious").string();
  Write(folder_, {{"installed.txt", "../precious\ndocs/../../precious\n" + absolute + "\n\n"}});
  EXPECT_EQ(RemoveFiles(folder_).outcome, SetupOutcome::kDone);
  EXPECT_EQ(FilesIn(temporary_.path()), (Files{{"precious", "mine"}}));
}

TEST_F(InstalledFiles, SettingsMoveAlongAndGoWhenToldTo) {
  // All that the programs write there (docs/settings.md), beside what a user put there.
  const Files moved = {{"Temp/Quenkit_Setting/Kerno_Cut.txt", "presets"},
                       {"Temp/Quenkit_Setting/Kerno_Text.txt", "text"},
                       {"Temp/Quenkit_Setting/Quenkit.ini", "A"},
                       {"Temp/Quenkit_Setting/Quenkit.ini.orig", "of 1999"},
                       {"Temp/Quenkit_Setting/Quenkit.ini.orig12", "of 2003"}};
  const Files stay = {{"Temp/Quenkit_Setting/Quenkit.ini.orig.mine", "mine"},
                      {"Quenkit_Setting/Quenkit.ini", "A"}};
  Write(temporary_ / "old", moved);
  Write(temporary_ / "old", stay);
  Write(folder_, {{"Quenkit_Setting/Quenkit.ini", "B"}, {"Temp/other", ""}});
  EXPECT_TRUE(CarrySettings(temporary_ / "old", folder_).ok());
  Files expected = stay;
  expected.merge(Files{{"Quenkit_Setting/", ""}, {"Temp/", ""}, {"Temp/Quenkit_Setting/", ""}});
  EXPECT_EQ(FilesIn(temporary_ / "old"), expected);
  expected = moved;
  expected.merge(Files{{"Quenkit_Setting/", ""},
                       {"Quenkit_Setting/Quenkit.ini", "B"},
                       {"Temp/", ""},
                       {"Temp/other", ""},
                       {"Temp/Quenkit_Setting/", ""}});
  EXPECT_EQ(FilesIn(folder_), expected);
  EXPECT_TRUE(RemoveSettings(folder_).ok());
  EXPECT_EQ(FilesIn(folder_), (Files{{"Temp/", ""}, {"Temp/other", ""}}));
}

}  // namespace
}  // namespace kerno
