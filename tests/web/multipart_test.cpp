#include "web/multipart.h"

#include <gtest/gtest.h>

namespace kerno {
namespace {

TEST(Multipart, BoundaryIsTheTimeUnlessTheFileHoldsIt) {
  const std::string held = "-----UpFile__";
  const struct {
    LocalTime now;
    std::string file;
    const char* boundary;
  } rows[] = {
      {{2026, 11, 21, 15, 30, 12}, "", "-----UpFile__153012"},
      {{2026, 11, 21, 0, 0, 0}, "x", "-----UpFile__000000"},
      {{2026, 11, 21, 23, 59, 60}, "", "-----UpFile__235959"},
      {{2026, 11, 21, 15, 30, 12}, "a--" + held + "153012\r\nb", "-----UpFile__153013"},
      {{2026, 11, 21, 15, 30, 12}, held + "153012" + held + "153013" + held, "-----UpFile__153014"},
      {{2026, 11, 21, 15, 30, 12}, held + "15301", "-----UpFile__153012"},
      {{2026, 11, 21, 15, 30, 12}, held + "993012", "-----UpFile__153012"},
      {{2026, 11, 21, 23, 59, 59}, "-" + held + "235959", "-----UpFile__000000"},
      // Overlapping starts: the second one begins inside the first one's tail.
      {{2026, 11, 21, 1, 2, 3}, held + held + "010203", "-----UpFile__010204"},
  };
  for (const auto& row : rows)
    EXPECT_EQ(ChooseBoundary(row.now, row.file), row.boundary) << row.file;
}

TEST(Multipart, AFileThatHoldsEveryBoundaryHasNone) {
  std::string all;
  for (int i = 0; i < 86400; ++i) {
    char text[32];
    std::snprintf(text, sizeof text, "-----UpFile__%02d%02d%02d", i / 3600, i / 60 % 60, i % 60);
    all += text;
  }
  EXPECT_FALSE(ChooseBoundary({2026, 11, 21, 12, 0, 0}, all));
  all.pop_back();  // 235959 is free now
  EXPECT_EQ(ChooseBoundary({2026, 11, 21, 12, 0, 0}, all), "-----UpFile__235959");
}

TEST(Multipart, FileNamesStayBetweenTheirQuotes) {
  const struct {
    std::u16string name;
    const char* header;
  } rows[] = {
      {u"plain name.svg", "plain name.svg"},
      {u"a\"; name=\"b", "a%22; name=%22b"},
      {u"a\r\nX-Evil: 1\r\n\r\nbody", "a%0D%0AX-Evil: 1%0D%0A%0D%0Abody"},
      {u"back\\", "back%5C"},
      {u"100%22.svg", "100%22.svg"},
      {u"@ＭＳ明朝_100_永.svg", "@ＭＳ明朝_100_永.svg"},
      {u"\x1B[2J\x7F\t", "%1B[2J%7F%09"},
      {u"\xD83D\xDE00\xD800", "\xF0\x9F\x98\x80\xEF\xBF\xBD"},
  };
  for (const auto& row : rows) EXPECT_EQ(HeaderFileName(row.name), row.header);
}

}  // namespace
}  // namespace kerno
