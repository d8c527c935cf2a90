// Reads the native outline form into contours and records, for comparison with what was recorded.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

namespace kerno::test {

using FixedPoint = std::pair<int32_t, int32_t>;  // x, y in 16.16

struct NativeRecord {
  int type = 0;
  std::vector<FixedPoint> points;
};

struct NativeContour {
  FixedPoint start;
  std::vector<NativeRecord> records;
};

template <typename T>
T ReadAt(const std::vector<std::byte>& buffer, size_t offset) {
  T value{};
  std::memcpy(&value, buffer.data() + offset, sizeof value);
  return value;
}

inline FixedPoint PointAt(const std::vector<std::byte>& buffer, size_t offset) {
  return {ReadAt<int32_t>(buffer, offset), ReadAt<int32_t>(buffer, offset + 4)};
}

// The buffer must be well formed.
inline std::vector<NativeContour> ReadNativeRecords(const std::vector<std::byte>& buffer) {
  std::vector<NativeContour> contours;
  for (size_t at = 0; at < buffer.size();) {
    const size_t end = at + ReadAt<uint32_t>(buffer, at);
    NativeContour contour{PointAt(buffer, at + 8), {}};
    for (at += 16; at < end;) {
      NativeRecord record;
      record.type = ReadAt<uint16_t>(buffer, at);
      const size_t count = ReadAt<uint16_t>(buffer, at + 2);
      at += 4;
      for (size_t i = 0; i < count; ++i, at += 8) {
        record.points.push_back(PointAt(buffer, at));
      }
      contour.records.push_back(std::move(record));
    }
    contours.push_back(std::move(contour));
  }
  return contours;
}

}  // namespace kerno::test
