#include "app/text_source.h"

#include <gtest/gtest.h>

#include "base/text.h"
#include "support/file_holder.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

TEST(DecodeText, EncodingsAndTheOffsetOfWhatIsWrong) {
  const struct {
    std::string bytes;
    std::u16string text;
    const char* why;  // null: it decodes
  } cases[] = {
      {"", u"", nullptr},
      {"\xFF\xFE", u"", nullptr},
      {"\xEF\xBB\xBF\xE3\x81", u"", "is not UTF-8 (byte offset 3)"},
      {"\xFF\xFE"
       "A",
       u"", "is not UTF-16: half a unit stands at the end (byte offset 2)"},
  };
  for (const auto& c : cases) {
    std::u16string text;
    const Status status = DecodeText(c.bytes, u"name", &text);
    EXPECT_EQ(c.why == nullptr, status.ok()) << testing::PrintToString(c.bytes);
    EXPECT_EQ(c.text, text) << testing::PrintToString(c.bytes);
    EXPECT_EQ(c.why ? c.why : "", Utf16ToUtf8(status.why));
  }
}

TEST(LoadText, WaitsForAFileThatIsHeld) {
  const test::TemporaryFolder folder;
  test::WriteBytes(folder / "a.txt", "text");
  const test::FileHolder holder(folder / "a.txt", test::HoldKind::kWholeFile, 200);
  std::u16string text;
  EXPECT_TRUE(LoadText(folder / "a.txt", &text).ok());
  EXPECT_EQ(u"text", text);
}

TEST(WithCrLf, EveryLineEndBecomesCrLf) {
  EXPECT_EQ(u"a\r\nb\r\nc\r\n\r\nd\r\n\r\ne", WithCrLf(u"a\nb\r\nc\r\rd\n\r\ne"));
  EXPECT_EQ(u"\r\n", WithCrLf(u"\n"));
  EXPECT_EQ(u"", WithCrLf(u""));
}

}  // namespace
}  // namespace kerno
