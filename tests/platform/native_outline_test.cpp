#include "platform/posix/native_outline.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/native_records.h"

namespace kerno {
namespace {

using test::FixedPoint;

OutlinePoint On(int64_t x, int64_t y) {
  return {x * 64, y * 64, PointKind::kOn};
}
OutlinePoint Off(int64_t x, int64_t y) {
  return {x * 64, y * 64, PointKind::kQuadratic};
}
FixedPoint At(int32_t x, int32_t y) {
  return {x * 0x10000, y * 0x10000};
}

struct Expected {
  FixedPoint start;
  std::vector<std::pair<int, std::vector<FixedPoint>>> records;
};

TEST(NativeOutline, StartsRunsAndEndsOfContours) {
  struct Case {
    std::vector<OutlinePoint> contour;
    Expected expected;
  };
  for (const auto& [contour, expected] : {
           Case{{On(0, 0), On(8, 0), Off(8, 8), Off(4, 8), On(0, 8)},
                {At(0, 0), {{1, {At(8, 0)}}, {2, {At(8, 8), At(4, 8), At(0, 8)}}}}},
           // Ends off the curve: the start closes it.
           Case{{On(0, 0), On(8, 0), Off(0, 8)},
                {At(0, 0), {{1, {At(8, 0)}}, {2, {At(0, 8), At(0, 0)}}}}},
           // Begins off the curve: it starts at its last point, or between last and first.
           Case{{Off(0, 8), On(8, 8), On(8, 0)},
                {At(8, 0), {{2, {At(0, 8), At(8, 8)}}, {1, {At(8, 0)}}}}},
           Case{{Off(-8, 0), On(0, -8), Off(8, 2)},
                {At(0, 1), {{2, {At(-8, 0), At(0, -8)}}, {2, {At(8, 2), At(0, 1)}}}}},
           // Repeated points stay, the end on the start included.
           Case{{On(0, 0), On(5, 5), On(5, 5), On(0, 0)},
                {At(0, 0), {{1, {At(5, 5), At(5, 5), At(0, 0)}}}}},
       }) {
    std::vector<std::byte> buffer;
    ASSERT_TRUE(WriteNativeOutline({contour, {contour.size()}}, &buffer));
    EXPECT_EQ(test::ReadAt<uint32_t>(buffer, 0), buffer.size());
    EXPECT_EQ(test::ReadAt<uint32_t>(buffer, 4), 24U);
    const auto contours = test::ReadNativeRecords(buffer);
    ASSERT_EQ(contours.size(), 1U);
    EXPECT_EQ(contours[0].start, expected.start);
    std::vector<std::pair<int, std::vector<FixedPoint>>> records;
    for (const auto& record : contours[0].records) records.emplace_back(record.type, record.points);
    EXPECT_EQ(records, expected.records);
  }
}

TEST(NativeOutline, CoordinatesFillSixteenBits) {
  std::vector<std::byte> buffer;
  const int64_t least = -32768 * 64;
  const int64_t most = 32768 * 64 - 1;
  ASSERT_TRUE(WriteNativeOutline({{{least, most, PointKind::kOn}, On(0, 0)}, {2}}, &buffer));
  EXPECT_EQ(test::PointAt(buffer, 8), FixedPoint(INT32_MIN, INT32_MAX - 1023));
  for (const int64_t beyond : {least - 1, most + 1, INT64_MAX, INT64_MIN}) {
    EXPECT_FALSE(WriteNativeOutline({{{0, beyond, PointKind::kOn}, On(0, 0)}, {2}}, &buffer))
        << beyond;
    EXPECT_TRUE(buffer.empty());
  }
}

}  // namespace
}  // namespace kerno
