// Walks the native outline form of the desktop's graphics interface: one TTPOLYGONHEADER per
// contour (cb, dwType, pfxStart: 16 bytes), each with its TTPOLYCURVE records (wType, cpfx: 4
// bytes, then cpfx POINTFX of 8 bytes: x and y in 16.16, y up). Numbers are in the byte order of
// the machine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace kerno {

inline constexpr uint16_t kNativeSpline =
    2;  // TT_PRIM_QSPLINE: control points, the last on the curve
inline constexpr size_t kNativePointSize = 8;

// Calls contour(start) and, for each of its records, record(kind, points, count) with the places of
// the points in the buffer. A buffer that ends early is walked as far as it goes.
template <class Byte, class Contour, class Record>
void WalkNativeOutline(std::span<Byte> outline, const Contour& contour, const Record& record) {
  constexpr size_t kHeaderSize = 16;
  constexpr size_t kRecordSize = 4;
  while (outline.size() >= kHeaderSize) {
    uint32_t size = 0;
    std::memcpy(&size, outline.data(), sizeof size);
    if (size < kHeaderSize || size > outline.size()) return;
    contour(outline.data() + 8);
    for (size_t at = kHeaderSize; at + kRecordSize <= size;) {
      uint16_t head[2];  // kind and number of points
      std::memcpy(head, outline.data() + at, sizeof head);
      at += kRecordSize;
      if (at + head[1] * kNativePointSize > size) return;
      record(head[0], outline.data() + at, head[1]);
      at += head[1] * kNativePointSize;
    }
    outline = outline.subspan(size);
  }
}

}  // namespace kerno
