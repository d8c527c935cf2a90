#include "base/text.h"

#include <gtest/gtest.h>

#include <vector>

#include "base/time_text.h"

namespace kerno {
namespace {

TEST(Text, Utf8TellsTheFirstOffendingByte) {
  const struct {
    std::string_view bytes;
    size_t offset;
  } kCases[] = {
      {"\x80", 0},                  // a continuation alone
      {"ab\xC3", 2},                // cut off
      {"a\xC0\xAF", 1},             // overlong
      {"\xE0\x80\x80", 0},          // overlong
      {"ok\xED\xA0\x80", 2},        // a surrogate
      {"\xF4\x90\x80\x80", 0},      // beyond the last character
      {"\xE3\x81\x82\xE3\x81", 3},  // a whole character, then half a one
      {"\xFF\xFE", 0},
  };
  for (const auto& c : kCases) {
    size_t offset = 99;
    EXPECT_FALSE(Utf8ToUtf16(c.bytes, &offset)) << c.bytes;
    EXPECT_EQ(offset, c.offset) << c.bytes;
  }
}

TEST(Text, Utf8AndUtf16AreInverse) {
  std::u16string all;
  for (char32_t c = 0; c < 0x110000; c += c < 0x3000 ? 1 : 97) {
    if (c < 0xD800 || c >= 0xE000) AppendCharacter(&all, c);
  }
  const std::string bytes = Utf16ToUtf8(all);
  EXPECT_EQ(Utf8ToUtf16(bytes), all);
  EXPECT_EQ(Utf8ToUtf16Lossy(bytes), all);
  EXPECT_EQ(Utf16ToUtf8(u"\U00020BB7"), "\xF0\xA0\xAE\xB7");
  EXPECT_EQ(Utf16ToUtf8(std::u16string{u'a', 0xD842, u'b'}),
            "a\xEF\xBF\xBD"
            "b");
  EXPECT_EQ(Utf8ToUtf16Lossy("a\xFF"
                             "b"),
            u"a\uFFFD"
            u"b");
}

TEST(Text, EscapesWhatARecordCannotHold) {
  EXPECT_EQ(EscapeText(u"a,b\tc"), u"a\\x2cb\\tc");
  EXPECT_EQ(EscapeText(u"\n\r\"'\\"), u"\\n\\r\\x22\\x27\\\\");
  EXPECT_EQ(EscapeText(u"日本 語;="), u"日本 語;=");
}

TEST(Text, UnquotesOnlyMatchingQuotes) {
  const std::pair<std::u16string_view, std::u16string_view> kCases[] = {
      {u"\"", u"\""},         {u"\"\"", u""}, {u"'a'", u"a"}, {u"'a\"", u"'a\""},
      {u"\"a\"b\"", u"a\"b"}, {u"a", u"a"},   {u"aa", u"aa"}, {u"", u""}};
  for (const auto& [text, wanted] : kCases) EXPECT_EQ(Unquote(text), wanted);
}

TEST(Text, ExtensionIsThatOfTheFileName) {
  const std::pair<std::u16string_view, std::u16string_view> kCases[] = {
      {u"a.dxf", u"dxf"}, {u"a.b.SVG", u"SVG"}, {u"x.d/file", u""}, {u"x.d\\file", u""},
      {u"a.", u""},       {u".dxf", u"dxf"},    {u"", u""}};
  for (const auto& [path, wanted] : kCases) EXPECT_EQ(Extension(path), wanted);
}

TEST(Text, ShiftJisUsesLowLinesForTheUnknown) {
  EXPECT_EQ(ToShiftJis(u"A日本\u0E01"), "A\x93\xFA\x96\x7B_");
  EXPECT_EQ(ToShiftJis(u"\U00020BB7"), "__");
}

TEST(TimeText, FillsInTheFields) {
  const LocalTime time{2026, 1, 2, 3, 4, 5};
  EXPECT_EQ(FormatTime(time, kTimeStamp), u"2026/01/02 03:04:05");
  EXPECT_EQ(FormatTime(time, u"%m%d_%H%%%x%"), u"0102_03%%%x%");
}

}  // namespace
}  // namespace kerno
