// The points of a native outline of the system, where they stand in its buffer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "platform/native_records.h"

namespace kerno {

// Calls change(x, y) with references to the 16.16 numbers of every point, contour starts included.
template <class Change>
void ChangeNativePoints(uint8_t* outline, size_t size, const Change& change) {
  const auto point = [&change](uint8_t* where) {
    int32_t xy[2];
    std::memcpy(xy, where, sizeof xy);
    change(xy[0], xy[1]);
    std::memcpy(where, xy, sizeof xy);
  };
  WalkNativeOutline(std::span(outline, size), point,
                    [&](uint16_t /*kind*/, uint8_t* points, size_t count) {
                      for (size_t i = 0; i < count; ++i) point(points + i * kNativePointSize);
                    });
}

}  // namespace kerno
