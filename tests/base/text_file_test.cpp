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
  const std::string blank = "\r\n\r\n\r\n\r\n\r\n\r\n\r\n\r\n\r\n";  // nine lines
  const std::string xml = "<?xml encoding=\"utf-8\"?>";
  const struct {
    const char* what;
    std::string bytes;
    std::u16string end;
  } kCases[] = {
      {"little-endian, an odd byte at the end", "\xFF\xFE"s + "a\0\xE5\x65X"s, u"a日"},
      {"big-endian", "\xFE\xFF\0a\x65\xE5"s, u"a日"},
      {"UTF-8 with a mark", "\xEF\xBB\xBF\xE6\x97\xA5", u"日"},
      {"no mark", "\x93\xFA\x96\x7B", u"日本"},
      {"UTF-8 declared on line 10", blank + xml + "\xE6\x97\xA5", u"?>日"},
      {"UTF-8 declared on line 11", blank + "\r\n" + xml + "\x93\xFA", u"?>日"},
  };
  const test::TemporaryFolder folder;
  std::u16string text;
  for (const auto& c : kCases) {
    WriteBytes(folder / "f", c.bytes);
    EXPECT_TRUE(ReadText(folder / "f", &text)) << c.what;
    const bool declared = c.bytes.starts_with("\r");
    EXPECT_TRUE(declared ? text.ends_with(c.end) : text == c.end)
        << c.what << " " << Utf16ToUtf8(text);
  }

  const std::pair<std::u16string_view, int> kDeclarations[] = {
      {u"<?xml encoding = 'Utf-16' ?>", 16},
      {u"<?xml encoding='SHIFT_JIS'?>", 74},
      {u"<?xml encoding='EUC-JP'?>\r\n<?xml encoding='UTF-8'?>", 0},  // the first one counts
      {u"<?xml encoding=                    UTF-8", 0},               // beyond 20 characters
      {u"<?xml encoding", 0}};
  for (const auto& [declared, code] : kDeclarations) EXPECT_EQ(DetectXmlEncoding(declared), code);
}

TEST(TextFile, ConvertsToUtf16Once) {
  const test::TemporaryFolder folder;
  WriteBytes(folder / "f", "k=\x93\xFA\r\n");
  for (int i = 0; i < 2; ++i) {
    EXPECT_TRUE(MakeUtf16File(folder / "f").ok());
    EXPECT_EQ(ReadBytes(folder / "f"), EncodeText(u"k=日\r\n", TextEncoding::kUtf16));
  }
}

TEST(TextFile, FailuresAreToldAndLeaveNothing) {
  const test::TemporaryFolder folder;
  test::RecordingNotices notices;
  for (const auto& path : {test::kFullDevice, folder / "none/f", folder.path()}) {
    EXPECT_FALSE(WriteText(path, u"text", TextEncoding::kUtf8).ok()) << path;
    EXPECT_EQ(notices.messages.back().find(u"ファイルに保存できません\n"), 0u);
  }
  EXPECT_EQ(notices.messages.size(), 3u);
  EXPECT_EQ(folder.Names(), std::set<std::string>{});
  WriteBytes(folder / "empty", "");
  for (const auto& path : {folder / "missing", folder / "empty", folder.path(),
                           std::filesystem::path(), test::kUnwritableFolder}) {
    std::u16string text = u"before";
    EXPECT_FALSE(ReadText(path, &text)) << path;
    EXPECT_EQ(text, u"");
    EXPECT_FALSE(IsUtf16File(path));
  }
}

TEST(TextFile, WaitsForAnotherProcessAndGivesUpAfterAHundredTries) {
  const test::TemporaryFolder folder;
  const auto file = folder / "f";
  std::u16string text;
  const std::vector<std::u16string> waits = {u"FileWait OpenRead  " + PathText(file), u"",
                                             u"FileWait OpenWrite " + PathText(file), u""};
  for (const auto kind : {test::HoldKind::kWholeFile, test::HoldKind::kRecord}) {
    WriteBytes(file, "old");
    test::RecordingNotices notices;
    {
      const test::FileHolder holder(file, kind, 500);
      EXPECT_TRUE(ReadText(file, &text));
      EXPECT_EQ(text, u"old");
    }
    const test::FileHolder second(file, kind, 300);
    EXPECT_TRUE(WriteText(file, u"new", TextEncoding::kUtf8).ok());
    EXPECT_EQ(ReadBytes(file), "new");
    EXPECT_EQ(notices.waits, waits);
  }
  test::FakeClock clock;
  test::RecordingNotices notices;
  test::FileHolder holder(file, test::HoldKind::kWholeFile);
  EXPECT_FALSE(ReadText(file, &text));
  EXPECT_EQ(clock.slept, 10000u);
  EXPECT_EQ(WriteText(file, u"x", TextEncoding::kUtf8).failure, Failure::kSharingViolation);
  EXPECT_EQ(clock.sleeps, 200);
  EXPECT_EQ(notices.waits, waits);
  holder.Release();
  EXPECT_EQ(ReadBytes(file), "new");
  EXPECT_EQ(notices.messages.size(), 1u);
}

}  // namespace
}  // namespace kerno
