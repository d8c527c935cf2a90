#include "base/dump_log.h"

#include <chrono>

#include "base/profile_settings.h"
#include "base/text.h"
#include "base/throttle.h"
#include "support/fake_settings.h"
#include "support/file_holder.h"
#include "support/settings_fixture.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;
using test::ReadBytes;
using test::WriteBytes;

class DumpLogTest : public test::SettingsFixture {
 protected:
  DumpLogTest() { clock_.seconds = 1795251600; }  // 2026-11-21 09:00:00
  fs::path Folder() const { return folder_ / "tmp/DbgDump"; }
};

TEST_F(DumpLogTest, OneFileForEachHour) {
  EXPECT_TRUE(DumpText(u"Test", u"first"));
  clock_.seconds += 3599;
  EXPECT_TRUE(DumpText(u"Test", u"two\r\nlines 日本"));
  const std::u16string header = u"someone\r\n" + PathText(folder_ / "tmp/") + u"\r\n" +
                                PathText(folder_ / "") + u"\r\n" + PathText(folder_ / "bin/kerno") +
                                u"\r\n";
  EXPECT_EQ(ReadBytes(Folder() / "Test_1121_09.txt"),
            EncodeText(header + u"\t\t2026/11/21 09:00:00\tfirst\r\n"
                                u"\t\t2026/11/21 09:59:59\ttwo\r\nlines 日本\r\n",
                       TextEncoding::kUtf16));
  clock_.seconds += 1;
  EXPECT_TRUE(DumpText(u"../a/b\\c", u"third"));
  EXPECT_EQ(ReadBytes(Folder() / ".._a_b_c_1121_10.txt"),
            EncodeText(header + u"\t\t2026/11/21 10:00:00\tthird\r\n", TextEncoding::kUtf16));
}

TEST_F(DumpLogTest, DeletesOnlyItsOwnOldFiles) {
  fs::create_directories(Folder() / "Dir_0101_01.txt");
  const std::pair<std::string, std::string> kFiles[] = {
      {"Old_0101_01.txt", "\xFF\xFEx"}, {"kerno.txt", "Created by /kerno\t"},
      {"notes_0101_01.txt", "mine"},    {"notes.txt", "mine"},
      {"Old_0101_1.txt", "\xFF\xFEx"},  {"Created.md", "Created by me"}};
  const auto now = fs::file_time_type::clock::now();
  for (const auto& [name, bytes] : kFiles) {
    WriteBytes(Folder() / name, bytes);
    fs::last_write_time(Folder() / name, now - std::chrono::hours(24 * 10 + 1));
  }
  WriteBytes(Folder() / "New_0101_01.txt", "\xFF\xFEx");
  const auto today = fs::file_time_type::clock::to_sys(now).time_since_epoch();
  clock_.seconds = std::chrono::duration_cast<std::chrono::seconds>(today).count();
  EXPECT_TRUE(DumpText(u"Test", u"x"));
  for (const auto& [name, bytes] : kFiles) {
    EXPECT_EQ(fs::exists(Folder() / name), name != "Old_0101_01.txt" && name != "kerno.txt")
        << name;
  }
  EXPECT_EQ(std::distance(fs::directory_iterator(Folder()), {}), 7);  // with the new one
}

TEST_F(DumpLogTest, WhatCannotBeOpenedIsTriedForTenSecondsAndReportedOnce) {
  const fs::path file = Folder() / "Test_1121_09.txt";
  fs::create_directories(file);
  clock_.on_sleep = [&] {
    if (clock_.sleeps == 3) fs::remove(file);
  };
  EXPECT_TRUE(DumpText(u"Test", u"x"));
  EXPECT_EQ(clock_.sleeps, 3);
  test::FileHolder holder(file, test::HoldKind::kWholeFile);
  for (const int sleeps : {103, 203}) {  // a holder may go at any time
    EXPECT_FALSE(DumpText(u"Test", u"y"));
    EXPECT_EQ(clock_.sleeps, sleeps);
  }
  holder.Release();
  EXPECT_TRUE(DumpText(u"Test", u"z"));
  fs::create_directories(Folder() / "Other_1121_09.txt");
  for (int i = 0; i < 2; ++i) {  // what stays so is not waited for twice
    EXPECT_FALSE(DumpText(u"Other", u"x"));
    EXPECT_EQ(clock_.sleeps, 303);
  }
  ASSERT_EQ(notices_.messages.size(), 2u);
  EXPECT_EQ(notices_.messages[0].find(u"Can't open ab  " + PathText(file)), 0u);
}

TEST_F(DumpLogTest, ThePerRunFileNeedsItsSwitch) {
  InstallProfileSettings();
  { const RunDump off(u"Test"); }
  EXPECT_FALSE(fs::exists(Folder()));
  WriteIni("[Debug]\r\nDbgDump=1\r\n");
  Restart();
  InstallProfileSettings();
  fs::create_directories(Folder());
  WriteBytes(Folder() / "kerno.txt", "of the run before");
  test::FileHolder holder(Folder() / "kerno.txt", test::HoldKind::kWholeFile);
  clock_.on_sleep = [&] {
    if (clock_.sleeps == 3) holder.Release();
  };
  const RunDump dump(u"Test");
  EXPECT_EQ(clock_.sleeps, 3);
  DumpUser user(u"Räuber日");
  EXPECT_EQ(DumpUser::Count(), 2);
  user.Write(u"line 本");
  EXPECT_EQ(ReadBytes(Folder() / "kerno.txt"),
            "Created by " + (folder_ / "bin/kerno").string() +
                "\t11/21/2026  09:00:00\nRauber\x93\xFA\tline \x96\x7B\n");
  EXPECT_NE(IniText().find(u"DbgFile=" + PathText(Folder() / "kerno.txt")), std::u16string::npos);
  EXPECT_TRUE(notices_.messages.empty());
  ReplaceSettings(nullptr);
}

TEST_F(DumpLogTest, TheThrottlePacesMessages) {
  FakeSettings settings;
  MessageThrottle throttle;
  const std::pair<uint32_t, bool> kCalls[] = {{5000, true},       {5099, false}, {5100, true},
                                              {0xFFFFFFF0, true}, {5, true},     {5, false}};
  for (const auto& [ticks, due] : kCalls) {
    clock_.ticks = ticks;
    EXPECT_EQ(throttle.Due(), due) << ticks;
  }
  EXPECT_EQ(settings.reads, 1);
}

}  // namespace
}  // namespace kerno
