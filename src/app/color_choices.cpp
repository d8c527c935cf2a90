#include "app/color_choices.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "app/captions.h"
#include "base/text.h"

namespace kerno {
namespace {

constexpr int kHueSteps = 12;
constexpr int kFirstHue = 90;
constexpr Color kDarkPaper = RgbColor(24, 24, 27);
constexpr Color kWhite = RgbColor(255, 255, 255);

struct Hls {
  int hue = 0, lightness = 128, saturation = 255;
  bool has_hue = false;
};

// Back from RGB to the double hexcone.
Hls HlsOf(Color color) {
  const int r = Red(color), g = Green(color), b = Blue(color);
  const int high = std::max({r, g, b}), low = std::min({r, g, b});
  if (high == low) return {};
  const double span = high - low;
  double hue = 0;
  if (high == r) {
    hue = (g - b) / span;
  } else if (high == g) {
    hue = 2 + (b - r) / span;
  } else {
    hue = 4 + (r - g) / span;
  }
  const double sum = high + low;
  const double saturation = span / (sum <= 255 ? sum : 510 - sum);
  return {static_cast<int>(std::lround(hue * 60 + 360)) % 360,
          static_cast<int>(std::lround(sum / 2)), static_cast<int>(std::lround(saturation * 255)),
          true};
}

double Luminance(Color color) {
  const auto linear = [](int channel) {
    const double c = channel / 255.0;
    return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(Red(color)) + 0.7152 * linear(Green(color)) + 0.0722 * linear(Blue(color));
}

double Contrast(Color a, Color b) {
  const double la = Luminance(a), lb = Luminance(b);
  return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

}  // namespace

const std::vector<ColorChoice>& NamedColors() {
  static const std::vector<ColorChoice> colors = {
      {u"Black", RgbColor(0, 0, 0)},       {u"Dark grey", RgbColor(96, 96, 96)},
      {u"Grey", RgbColor(128, 128, 128)},  {u"Silver", RgbColor(192, 192, 192)},
      {u"White", RgbColor(255, 255, 255)}, {u"Maroon", RgbColor(128, 0, 0)},
      {u"Red", RgbColor(255, 0, 0)},       {u"Orange", RgbColor(255, 128, 0)},
      {u"Brown", RgbColor(139, 69, 19)},   {u"Yellow", RgbColor(255, 255, 0)},
      {u"Olive", RgbColor(128, 128, 0)},   {u"Lime", RgbColor(0, 255, 0)},
      {u"Green", RgbColor(0, 128, 0)},     {u"Aqua", RgbColor(0, 255, 255)},
      {u"Teal", RgbColor(0, 128, 128)},    {u"Blue", RgbColor(0, 0, 255)},
      {u"Navy", RgbColor(0, 0, 128)},      {u"Fuchsia", RgbColor(255, 0, 255)},
      {u"Purple", RgbColor(128, 0, 128)},  {u"Pink", RgbColor(255, 128, 192)},
  };
  return colors;
}

std::vector<ColorChoice> FollowingColors(const ColorChoice& first) {
  const Hls hls = HlsOf(first.color);
  std::vector<ColorChoice> colors = {first};
  for (int i = 0; i < kHueSteps; ++i) {
    const int hue = (hls.hue + kFirstHue + i * (360 / kHueSteps)) % 360;
    const bool is_own = hue == hls.hue && hls.has_hue;
    colors.push_back({Say(u"Hue {}°", {Utf8ToUtf16Lossy(std::to_string(hue))}),
                      is_own ? first.color : HlsColor(hue, hls.lightness, hls.saturation)});
  }
  return colors;
}

bool Contrasts(Color ink, Color paper) {
  return Contrast(ink, paper) >= 3;
}

Color PaperFor(Color ink, Color paper) {
  if (Contrasts(ink, paper)) return paper;
  return Contrast(ink, kWhite) >= Contrast(ink, kDarkPaper) ? kWhite : kDarkPaper;
}

}  // namespace kerno
