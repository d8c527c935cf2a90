#include "export/aci.h"

#include <array>
#include <cstddef>
#include <limits>

namespace kerno {
namespace {

constexpr int kFirstOfWheel = 10;
constexpr int kFirstGrey = 250;
constexpr int kLast = 255;

// Channels of the five shades of a hue (units digit / 2) in quarter steps from the lowest to the
// highest, at full saturation (even units digits) and at half saturation (odd ones).
constexpr int kLevels[5][2][5] = {
    {{0, 63, 127, 191, 255}, {127, 159, 191, 223, 255}},
    {{0, 41, 82, 124, 165}, {82, 103, 124, 145, 165}},
    {{0, 31, 63, 95, 127}, {63, 79, 95, 111, 127}},
    {{0, 19, 38, 57, 76}, {38, 47, 57, 66, 76}},
    {{0, 9, 19, 28, 38}, {19, 23, 28, 33, 38}},
};

// One channel of a hue of the 24, `hue` counted from where the channel is at its highest.
int QuarterSteps(int hue) {
  hue = ((hue % 24) + 24) % 24;
  const int from_highest = hue <= 12 ? hue : 24 - hue;
  if (from_highest <= 4) return 4;
  return from_highest >= 8 ? 0 : 8 - from_highest;
}

// The published table, which drawing programs share, strays from its own rule in two runs.
int PublishedChannel(int index, int level, bool blue) {
  if (index % 10 == 9 && index > 100 && level > 30) return 88;
  if (index % 10 == 7 && index > 140 && index < 200 && blue && level == 76) return 126;
  return level;
}

Color WheelColor(int index) {
  const int hue = index / 10 - 1;
  const auto& levels = kLevels[index % 10 / 2][index % 2];
  const auto channel = [&](int shift) {
    return PublishedChannel(index, levels[QuarterSteps(hue - shift)], shift == 16);
  };
  return RgbColor(channel(0), channel(8), channel(16));
}

constexpr Color Grey(int level) {
  return RgbColor(level, level, level);
}

Color PaletteColor(int index) {
  constexpr Color kPure[] = {Grey(0),
                             RgbColor(255, 0, 0),
                             RgbColor(255, 255, 0),
                             RgbColor(0, 255, 0),
                             RgbColor(0, 255, 255),
                             RgbColor(0, 0, 255),
                             RgbColor(255, 0, 255),
                             Grey(255),
                             Grey(96),
                             Grey(192)};
  constexpr Color kGreys[] = {Grey(32), Grey(64), Grey(128), Grey(160), Grey(224), Grey(255)};
  if (index < kFirstOfWheel) return kPure[index];
  return index < kFirstGrey ? WheelColor(index) : kGreys[index - kFirstGrey];
}

std::array<Color, kLast + 1> MakePalette() {
  std::array<Color, kLast + 1> palette{};
  for (int i = 0; i <= kLast; ++i) palette[static_cast<size_t>(i)] = PaletteColor(i);
  return palette;
}

const std::array<Color, kLast + 1>& Palette() {
  static const std::array<Color, kLast + 1> palette = MakePalette();
  return palette;
}

bool IsHigh(int channel) {
  return channel > 250;
}
bool IsLow(int channel) {
  return channel < 5;
}

// The index of a pure colour or of the two middle greys, or 0.
int ClassicBand(int red, int green, int blue) {
  const bool high_or_low = (IsHigh(green) || IsLow(green)) && (IsHigh(blue) || IsLow(blue));
  if (IsHigh(red) && high_or_low) {
    if (IsHigh(green)) return IsHigh(blue) ? 7 : 2;
    return IsHigh(blue) ? 6 : 1;
  }
  if (IsLow(red) && high_or_low) {
    if (IsHigh(green)) return IsHigh(blue) ? 4 : 3;
    return IsHigh(blue) ? 5 : 7;  // Classic: black as white, drawn in the readers' ink
  }
  const auto all_between = [&](int low, int high) {
    return red > low && red < high && green > low && green < high && blue > low && blue < high;
  };
  if (all_between(125, 130)) return 8;
  return all_between(190, 195) ? 9 : 0;
}

// Classic: a difference of -1 counts as 255; drawings in the field have these colours.
int WrappedSquare(int difference) {
  const int low_byte = difference & 255;
  return low_byte * low_byte;
}

int PlainSquare(int difference) {
  return difference * difference;
}

// The first index from `start` to 255 whose distance is the smallest one below `best`, or `start`.
template <class Square>
int NearestIndex(Color color, int start, int best, Square square) {
  int nearest = start;
  for (int i = start; i <= kLast && best > 0; ++i) {
    const Color c = Palette()[static_cast<size_t>(i)];
    const int distance = square(Red(c) - Red(color)) + square(Green(c) - Green(color)) +
                         square(Blue(c) - Blue(color));
    if (distance < best) {
      best = distance;
      nearest = i;
    }
  }
  return nearest == kLast ? 7 : nearest;
}

}  // namespace

int16_t RgbToAci(Color color, AciRule rule) {
  if (rule == AciRule::kNearest) {
    return static_cast<int16_t>(
        NearestIndex(color, 1, std::numeric_limits<int>::max(), PlainSquare));
  }
  const int red = Red(color);
  const int green = Green(color);
  const int blue = Blue(color);
  if (const int band = ClassicBand(red, green, blue)) return static_cast<int16_t>(band);
  const bool grey = red == green && green == blue;
  return static_cast<int16_t>(NearestIndex(color, grey ? kFirstGrey : 1, 1000, WrappedSquare));
}

Color AciToRgb(int index) {
  return index >= 0 && index <= kLast ? Palette()[static_cast<size_t>(index)] : Grey(0);
}

}  // namespace kerno
