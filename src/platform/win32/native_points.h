// The points of a native outline of the system, where they stand in its buffer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "platform/win32/windows_api.h"

namespace kerno {

// Calls change(x, y) with references to the 16.16 numbers of every point, contour starts included.
// A buffer that ends early is walked as far as it goes.
template <class Change>
void ChangeNativePoints(uint8_t* at, size_t size, const Change& change) {
  const auto point = [&change](uint8_t* where) {
    int32_t xy[2];
    std::memcpy(xy, where, sizeof xy);
    change(xy[0], xy[1]);
    std::memcpy(where, xy, sizeof xy);
  };
  while (size >= sizeof(TTPOLYGONHEADER)) {
    TTPOLYGONHEADER header{};
    std::memcpy(&header, at, sizeof header);
    if (header.cb < sizeof header || header.cb > size) return;
    point(at + offsetof(TTPOLYGONHEADER, pfxStart));
    const size_t record_size = offsetof(TTPOLYCURVE, apfx);
    for (size_t i = sizeof header; i + record_size <= header.cb;) {
      WORD count = 0;
      std::memcpy(&count, at + i + offsetof(TTPOLYCURVE, cpfx), sizeof count);
      i += record_size;
      if (i + count * sizeof(POINTFX) > header.cb) return;
      for (WORD k = 0; k < count; ++k) point(at + i + k * sizeof(POINTFX));
      i += count * sizeof(POINTFX);
    }
    at += header.cb;
    size -= header.cb;
  }
}

}  // namespace kerno
