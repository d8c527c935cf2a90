// Numbers in the tables of a font.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kerno {

// The number of `size` bytes (4 at most) at an offset, the high byte first. Bytes beyond the end
// are 0.
constexpr uint32_t Big(std::string_view bytes, size_t at, size_t size) {
  uint32_t value = 0;
  for (size_t i = 0; i < size; ++i) {
    value = value << 8 | (at + i < bytes.size() ? static_cast<unsigned char>(bytes[at + i]) : 0u);
  }
  return value;
}

}  // namespace kerno
