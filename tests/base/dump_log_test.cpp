#include "base/dump_log.h"

#include <chrono>

#include "base/profile_store.h"
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
  EXPECT_TRUE(DumpText(u"Test", u"third"));
  EXPECT_EQ(ReadBytes(Folder() / "Test_1121_10.txt"),
            EncodeText(header + u"\t\t2026/11/21 10:00:00\tthird\r\n", TextEncoding::kUtf16));
  EXPECT_TRUE(DumpText(u"../a/b\\c", u"x"));
  EXPECT_TRUE(fs::exists(Folder() / ".._a_b_c_1121_10.txt"));
}

TEST_F(DumpLogTest, DeletesOnlyItsOwnOldFiles) {
  fs::create_directories(Folder() / "Dir_0101_01.txt");
  const std::pair<const char*, const char*> kFiles[] = {
      {"Old_0101_01.txt", "\xFF\xFEx"}, {"kerno.txt", "Created by /kerno\t"},
      {"notes_0101_01.txt", "mine"},    {"notes.txt", "mine"},
      {"Old_0101_1.txt", "\xFF\xFEx"},  {"Created.md", "Created by me"}};
  for (const auto& [name, bytes] : kFiles) {
    WriteBytes(Folder() / name, bytes);
    fs::last_write_time(Folder() / name,
                        fs::file_time_type::clock::now() - std::chrono::hours(24 * 10 + 1));
  }
  WriteBytes(Folder() / "New_0101_01.txt", "\xFF\xFEx");
  ReplaceClock(nullptr);
  clock_.seconds = CurrentClock().Seconds();
  ReplaceClock(&clock_);
  EXPECT_TRUE(DumpText(u"Test", u"x"));
  EXPECT_FALSE(fs::exists(Folder() / "Old_0101_01.txt"));
  EXPECT_FALSE(fs::exists(Folder() / "kerno.txt"));
  for (const char* kept : {"notes_0101_01.txt", "notes.txt", "Old_0101_1.txt", "Created.md",
                           "New_0101_01.txt", "Dir_0101_01.txt"}) {
    EXPECT_TRUE(fs::exists(Folder() / kept)) << kept;
  }
}

TEST_F(DumpLogTest, WaitsForOthersAndReportsOnce) {
  EXPECT_TRUE(DumpText(u"Test", u"x"));
  const std::string before = ReadBytes(Folder() / "Test_1121_09.txt");
  test::FileHolder holder(Folder() / "Test_1121_09.txt", test::HoldKind::kWholeFile);
  EXPECT_FALSE(DumpText(u"Test", u"y"));
  EXPECT_EQ(clock_.sleeps, 100);
  EXPECT_FALSE(DumpText(u"Test", u"z"));
  ASSERT_EQ(notices_.messages.size(), 1u);
  EXPECT_EQ(notices_.messages[0].find(u"Can't open ab  " + PathText(Folder())), 0u);
  clock_.on_sleep = [&] {
    if (clock_.sleeps == 203) holder.Release();
  };
  EXPECT_TRUE(DumpText(u"Test", u"at last"));
  EXPECT_EQ(clock_.sleeps, 203);
  EXPECT_EQ(
      ReadBytes(Folder() / "Test_1121_09.txt"),
      before + EncodeText(u"\t\t2026/11/21 09:00:00\tat last\r\n", TextEncoding::kUtf16).substr(2));
}

TEST_F(DumpLogTest, ThePerRunFileNeedsItsSwitch) {
  process_->application = Application{u"", u"Quenkit.ini"};
  {
    DumpUser off(u"Test");
    off.Write(u"nothing");
    EXPECT_EQ(DumpUser::Count(), 1);
  }
  EXPECT_EQ(DumpUser::File(), fs::path());
  EXPECT_FALSE(fs::exists(Folder() / "kerno.txt"));

  WriteIni("[Debug]\r\nDbgDump=1\r\n");
  DumpUser late(u"Test");  // the switch was read already
  EXPECT_EQ(DumpUser::File(), fs::path());
  Restart();
  process_->application = Application{u"", u"Quenkit.ini"};
  WriteBytes(Folder() / "kerno.txt", "of the run before");
  DumpUser user(u"Räuber日");
  EXPECT_EQ(DumpUser::File(), Folder() / "kerno.txt");
  user.Write(u"line 本");
  EXPECT_EQ(ReadBytes(Folder() / "kerno.txt"),
            "Created by " + (folder_ / "bin/kerno").string() +
                "\t11/21/2026  09:00:00\nRauber\x93\xFA\tline \x96\x7B\n");
  EXPECT_EQ(IniStore(u"Quenkit").GetStr(u"Debug", u"DbgFile", u""),
            PathText(Folder() / "kerno.txt"));
}

TEST_F(DumpLogTest, ThePerRunFileWaitsForWhoHoldsTheOneBefore) {
  process_->application = Application{u"", u"Quenkit.ini"};
  WriteIni("[Debug]\r\nDbgDump=1\r\n");
  fs::create_directories(Folder());
  WriteBytes(Folder() / "kerno.txt", "of the run before");
  test::FileHolder holder(Folder() / "kerno.txt", test::HoldKind::kWholeFile);
  clock_.on_sleep = [&] {
    if (clock_.sleeps == 3) holder.Release();
  };
  const DumpUser user(u"Test");
  EXPECT_EQ(clock_.sleeps, 3);
  EXPECT_EQ(DumpUser::File(), Folder() / "kerno.txt");
  EXPECT_EQ(ReadBytes(Folder() / "kerno.txt").find("Created by "), 0u);
  EXPECT_TRUE(notices_.messages.empty());
}

TEST_F(DumpLogTest, TheThrottlePacesMessages) {
  FakeSettings settings;
  MessageThrottle throttle;
  clock_.ticks = 5000;
  EXPECT_TRUE(throttle.Due());
  clock_.ticks = 5099;
  EXPECT_FALSE(throttle.Due());
  clock_.ticks = 5100;
  EXPECT_TRUE(throttle.Due());
  EXPECT_EQ(settings.reads, 1);
  clock_.ticks = 0xFFFFFFF0;
  EXPECT_TRUE(throttle.Due());
  clock_.ticks = 5;  // the ticks began again
  EXPECT_TRUE(throttle.Due());
  EXPECT_FALSE(throttle.Due());

  Restart();
  settings.ints[{u"Message", u"DrawTiming"}] = 1000;
  notices_.stop_at = 600;
  PacedProgress progress;
  int steps = 0;
  clock_.ticks = 10000;
  while (steps < 1000 && progress.Step(u"Work", steps, 1000) == Continue::kYes) {
    ++steps;
    clock_.ticks += 10;
  }
  EXPECT_EQ(steps, 600);
  EXPECT_EQ(notices_.steps.size(), 7u);
  EXPECT_EQ(ProgressText(u"Work", 3, 10), u"Work  (3/10)  ");
}

}  // namespace
}  // namespace kerno
