// Colours of pens and brushes: 24 bits, red in the low byte, then green, then blue.
#pragma once

#include <cstdint>

namespace kerno {

using Color = uint32_t;

constexpr Color RgbColor(int red, int green, int blue) {
  return static_cast<Color>(red & 255) | static_cast<Color>(green & 255) << 8 |
         static_cast<Color>(blue & 255) << 16;
}
constexpr int Red(Color c) {
  return static_cast<int>(c & 255);
}
constexpr int Green(Color c) {
  return static_cast<int>(c >> 8 & 255);
}
constexpr int Blue(Color c) {
  return static_cast<int>(c >> 16 & 255);
}

// Hue in degrees (any integer), lightness and saturation 0 to 255 of the HLS double hexcone,
// rounded to whole channels.
Color HlsColor(int hue, int lightness, int saturation);

}  // namespace kerno
