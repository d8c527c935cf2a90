#include "base/text_file.h"

#include <gtest/gtest.h>

#include "base/text.h"
#include "support/fake_clock.h"
#include "support/file_holder.h"
#include "support/places.h"
#include "support/recording_notices.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

using test::ReadBytes;
using test::WriteBytes;
using namespace std::string_literals;

TEST(TextFile, RecognisesTheEncoding) {
  const std::string cp932 = "\x93\xFA\x96\x7B";
  const struct {
    const char* what;
    std::string bytes;
    std::u16string text;
  } kCases[] = {
      {"one byte of a mark", "\xFF", u"\uF8F3"},
      {"little-endian",
       "\xFF\xFE"
       "a\0\xE5\x65"s,
       u"a日"},
      {"big-endian", "\xFE\xFF\0a\x65\xE5"s, u"a日"},
      {"an odd byte at the end",
       "\xFF\xFE"
       "a\0b"s,
       u"a"},
      {"a mark alone", "\xFF\xFE", u""},
      {"UTF-8 with a mark", "\xEF\xBB\xBF\xE6\x97\xA5", u"日"},
      {"no mark", cp932, u"日本"},
      {"UTF-8 declared", "<?xml version='1.0' encoding='utf-8'?>\r\n\xE6\x97\xA5",
       u"<?xml version='1.0' encoding='utf-8'?>\r\n日"},
      {"UTF-8 declared on line 10",
       "\r\n\r\n\r\n\r\n\r\n\r\n\r\n\r\n\r\n<?xml encoding=\"UTF-8\"?>\xE6\x97\xA5",
       u"\r\n\r\n\r\n\r\n\r\n\r\n\r\n\r\n\r\n<?xml encoding=\"UTF-8\"?>日"},
      {"UTF-8 declared on line 11",
       "\r\n\r\n\r\n\r\n\r\n\r\n\r\n\r\n\r\n\r\n<?xml encoding=\"UTF-8\"?>" + cp932,
       u"\r\n\r\n\r\n\r\n\r\n\r\n\r\n\r\n\r\n\r\n<?xml encoding=\"UTF-8\"?>日本"},
  };
  const test::TemporaryFolder folder;
  for (const auto& c : kCases) {
    WriteBytes(folder / "f", c.bytes);
    std::u16string text;
    EXPECT_TRUE(ReadText(folder / "f", &text)) << c.what;
    EXPECT_EQ(text, c.text) << c.what;
  }
  WriteBytes(folder / "f",
             "\xFF\xFE"
             "a\0"s);
  std::u16string text;
  EXPECT_TRUE(ReadText(folder / "f", &text, TextForm::kRawUtf16));
  EXPECT_EQ(text, u"\uFEFFa");
}

TEST(TextFile, DetectsDeclaredEncodings) {
  const std::pair<std::u16string_view, int> kCases[] = {
      {u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>", 8},
      {u"<?xml encoding = 'Utf-16' ?>", 16},
      {u"<?xml encoding='SHIFT_JIS'?>", 74},
      {u"<?xml version='1.0'?>", 0},
      {u"encoding='UTF-8' xml", 0},                                   // the wrong order
      {u"<?xml encoding='EUC-JP'?>\r\n<?xml encoding='UTF-8'?>", 0},  // the first one counts
      {u"<?xml encoding=                    UTF-8", 0},               // beyond 20 characters
      {u"<?xml encoding", 0},
      {u"", 0}};
  for (const auto& [text, code] : kCases) EXPECT_EQ(DetectXmlEncoding(text), code);
}

TEST(TextFile, UnreadableFilesGiveAnEmptyText) {
  const test::TemporaryFolder folder;
  WriteBytes(folder / "empty", "");
  for (const auto& path : {folder / "missing", folder / "empty", folder.path(),
                           std::filesystem::path(), test::kUnwritableFolder}) {
    std::u16string text = u"before";
    EXPECT_FALSE(ReadText(path, &text)) << path;
    EXPECT_EQ(text, u"");
    EXPECT_FALSE(IsUtf16File(path));
  }
}

TEST(TextFile, ConvertsToUtf16Once) {
  const test::TemporaryFolder folder;
  WriteBytes(folder / "f", "[a]\r\nk=\x93\xFA\r\n");
  EXPECT_TRUE(MakeUtf16File(folder / "f").ok());
  const std::string converted = ReadBytes(folder / "f");
  EXPECT_EQ(converted, EncodeText(u"[a]\r\nk=日\r\n", TextEncoding::kUtf16));
  EXPECT_TRUE(MakeUtf16File(folder / "f").ok());
  EXPECT_EQ(ReadBytes(folder / "f"), converted);
  EXPECT_EQ(folder.Names(), std::set<std::string>{"f"});
}

TEST(TextFile, AFailedWriteIsReportedAndLeavesTheFile) {
  const test::TemporaryFolder folder;
  test::RecordingNotices notices;
  EXPECT_FALSE(WriteText(test::kFullDevice, u"text", TextEncoding::kUtf8).ok());
  EXPECT_FALSE(WriteText(folder / "none/f", u"text", TextEncoding::kUtf8).ok());
  EXPECT_FALSE(WriteText(folder.path(), u"text", TextEncoding::kUtf8).ok());
  ASSERT_EQ(notices.messages.size(), 3u);
  for (const auto& message : notices.messages) {
    EXPECT_EQ(message.find(u"ファイルに保存できません\n"), 0u) << Utf16ToUtf8(message);
  }
  EXPECT_EQ(folder.Names(), std::set<std::string>{});
}

TEST(TextFile, WaitsForAnotherProcess) {
  const test::TemporaryFolder folder;
  for (const auto kind : {test::HoldKind::kWholeFile, test::HoldKind::kRecord}) {
    WriteBytes(folder / "f", "old");
    test::RecordingNotices notices;
    const test::FileHolder holder(folder / "f", kind, 1000);
    std::u16string text;
    EXPECT_TRUE(ReadText(folder / "f", &text));
    EXPECT_EQ(text, u"old");
    EXPECT_EQ(notices.waits,
              (std::vector<std::u16string>{u"FileWait OpenRead  " + PathText(folder / "f"), u""}));

    const test::FileHolder second(folder / "f", kind, 300);
    EXPECT_TRUE(WriteText(folder / "f", u"new", TextEncoding::kUtf8).ok());
    EXPECT_EQ(ReadBytes(folder / "f"), "new");
    EXPECT_EQ(notices.waits[2], u"FileWait OpenWrite " + PathText(folder / "f"));
  }
}

TEST(TextFile, GivesUpAfterAHundredTries) {
  const test::TemporaryFolder folder;
  WriteBytes(folder / "f", "old");
  test::FakeClock clock;
  test::RecordingNotices notices;
  test::FileHolder holder(folder / "f", test::HoldKind::kWholeFile);
  std::u16string text;
  EXPECT_FALSE(ReadText(folder / "f", &text));
  EXPECT_EQ(clock.sleeps, 100);
  EXPECT_EQ(clock.slept, 10000u);
  EXPECT_EQ(notices.waits.size(), 2u);
  EXPECT_EQ(WriteText(folder / "f", u"new", TextEncoding::kUtf8).failure,
            Failure::kSharingViolation);
  EXPECT_EQ(clock.sleeps, 200);
  holder.Release();
  EXPECT_EQ(ReadBytes(folder / "f"), "old");
  EXPECT_EQ(notices.messages.size(), 1u);
}

}  // namespace
}  // namespace kerno
