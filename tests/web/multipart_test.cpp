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
      {{2026, 11, 21, 23, 59, 60}, "", "-----UpFile__235959"},
      {{2026, 11, 21, 15, 30, 12}, "a--" + held + "153012\r\nb", "-----UpFile__153013"},
      {{2026, 11, 21, 15, 30, 12}, held + "153012" + held + "153013" + held, "-----UpFile__153014"},
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

}  // namespace
}  // namespace kerno
