#include "base/text.h"

#include <gtest/gtest.h>

#include "base/time_text.h"

namespace kerno {
namespace {

TEST(Text, Utf8TellsTheFirstOffendingByte) {
  using namespace std::string_view_literals;
  const std::pair<std::string_view, size_t> kCases[] = {
      {"\x80", 0},                  // a continuation alone
      {"ab\xC3", 2},                // cut off
      {"a\xC0\xAF", 1},             // overlong
      {"ok\xED\xA0\x80", 2},        // a surrogate
      {"\xF4\x90\x80\x80", 0},      // beyond the last character
      {"\xE3\x81\x82\xE3\x81", 3},  // a whole character, then half a one
      {"\xFF\xFE", 0},
  };
  for (const auto& [bytes, wanted] : kCases) {
    size_t offset = 99;
    EXPECT_FALSE(Utf8ToUtf16(bytes, &offset)) << bytes;
    EXPECT_EQ(offset, wanted) << bytes;
  }
  EXPECT_EQ(Utf8ToUtf16Lossy("a\xFF\xC3"sv), u"a\uFFFD\uFFFD");
}

TEST(Text, Utf8AndUtf16AreInverse) {
  std::u16string all;
  for (char32_t c = 0; c < 0x110000; c += c < 0x3000 ? 1 : 97) {
    if (c < 0xD800 || c >= 0xE000) AppendCharacter(&all, c);
  }
  EXPECT_EQ(Utf8ToUtf16(Utf16ToUtf8(all)), all);
  EXPECT_EQ(Utf16ToUtf8(u"\U00020BB7"), "\xF0\xA0\xAE\xB7");
  EXPECT_EQ(Utf16ToUtf8(std::u16string{u'a', 0xD842}), "a\xEF\xBF\xBD");
}

TEST(Text, FormsOfRecordsNamesAndTimes) {
  EXPECT_EQ(EscapeText(u"a,b\tc\n\r\"'\\日 ;="), u"a\\x2cb\\tc\\n\\r\\x22\\x27\\\\日 ;=");
  const std::pair<std::u16string_view, std::u16string_view> kQuoted[] = {
      {u"\"", u"\""},     {u"\"\"", u""},         {u"'a'", u"a"},
      {u"'a\"", u"'a\""}, {u"\"a\"b\"", u"a\"b"}, {u"aa", u"aa"}};
  for (const auto& [text, wanted] : kQuoted) EXPECT_EQ(Unquote(text), wanted);
  EXPECT_EQ(Extension(u"a.b.SVG"), u"SVG");
  EXPECT_EQ(Extension(u"x.d\\file"), u"");
  const LocalTime time{2026, 1, 2, 3, 4, 5};
  EXPECT_EQ(FormatTime(time, kTimeStamp), u"2026/01/02 03:04:05");
  EXPECT_EQ(FormatTime(time, u"%m%d_%H%%%x%"), u"0102_03%%%x%");
}

}  // namespace
}  // namespace kerno
