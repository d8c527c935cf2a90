#include "parts/color.h"

#include <cmath>

namespace kerno {
namespace {

// One channel of the double hexcone: `hue` in degrees, shifted for the channel.
double Channel(double low, double high, int hue) {
  hue = ((hue % 360) + 360) % 360;
  if (hue < 60) return low + (high - low) * hue / 60;
  if (hue < 180) return high;
  if (hue < 240) return low + (high - low) * (240 - hue) / 60;
  return low;
}

int ToByte(double part) {
  return static_cast<int>(std::lround(part * 255));
}

}  // namespace

Color HlsColor(int hue, int lightness, int saturation) {
  const double l = lightness / 255.0;
  const double s = saturation / 255.0;
  const double high = l <= 0.5 ? l * (1 + s) : l + s - l * s;
  const double low = 2 * l - high;
  hue %= 360;
  return RgbColor(ToByte(Channel(low, high, hue + 120)), ToByte(Channel(low, high, hue)),
                  ToByte(Channel(low, high, hue - 120)));
}

}  // namespace kerno
