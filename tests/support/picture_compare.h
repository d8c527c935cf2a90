// Comparing pictures of one drawing that different programs made.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "export/draw_parts.h"
#include "platform/drawing.h"
#include "support/run.h"
#include "support/temporary_folder.h"

namespace kerno::test {

// Rows from the top down, three bytes a pixel: red, green, blue.
struct Picture {
  int width = 0;
  int height = 0;
  std::vector<uint8_t> rgb;

  uint8_t At(int x, int y, int channel) const {
    const size_t pixel =
        static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x);
    return rgb[pixel * 3 + static_cast<size_t>(channel)];
  }
};

// Our own picture of a drawing, on white.
inline Picture Drawn(const PartsA& model, int width, int height, const Affine& fit,
                     const DrawOptions& options = {}) {
  const auto surface = CreateBitmapSurface(width, height, 0xFFFFFF);
  DrawParts(surface->Context(), model, fit, options);
  Picture picture{width, height, {}};
  const std::span<const uint8_t> pixels = surface->Pixels();
  for (size_t i = 0; i < pixels.size(); i += 4) {
    for (const size_t c : {2, 1, 0}) picture.rgb.push_back(pixels[i + c]);
  }
  return picture;
}

// Any picture that ImageMagick reads, on white.
inline Picture ReadPicture(const std::filesystem::path& file) {
  const std::filesystem::path raw = file.string() + ".rgb";
  const std::string size = OutputOf("identify -format '%w %h' " + file.string());
  OutputOf("convert " + file.string() + " -background white -flatten -depth 8 rgb:" + raw.string());
  const std::string bytes = ReadBytes(raw);
  Picture picture{std::atoi(size.c_str()), std::atoi(size.c_str() + size.find(' ')), {}};
  picture.rgb.assign(bytes.begin(), bytes.end());
  return picture;
}

// The darkest and the lightest of a channel in and next to a pixel.
inline std::pair<int, int> RangeAround(const Picture& picture, int x, int y, int channel) {
  std::pair<int, int> range = {255, 0};
  for (int at = 0; at < 9; ++at) {
    const int value = picture.At(std::clamp(x + at % 3 - 1, 0, picture.width - 1),
                                 std::clamp(y + at / 3 - 1, 0, picture.height - 1), channel);
    range = {std::min(range.first, value), std::max(range.second, value)};
  }
  return range;
}

// The share of the pixels near ink on which two pictures of one size agree within anti-aliasing:
// each shows there what the other shows within a pixel's distance. 0 when there is no ink at all.
inline double AgreementNearInk(const Picture& a, const Picture& b) {
  constexpr int kInk = 200;  // anything darker
  constexpr int kShade = 40;
  EXPECT_EQ(a.width, b.width);
  EXPECT_EQ(a.height, b.height);
  if (a.width != b.width || a.height != b.height || a.rgb.size() != b.rgb.size()) return 0;
  const auto within = [](int value, const std::pair<int, int>& range) {
    return value >= range.first - kShade && value <= range.second + kShade;
  };
  size_t near = 0;
  size_t agree = 0;
  for (int y = 0; y < a.height; ++y) {
    for (int x = 0; x < a.width; ++x) {
      bool ink = false;
      bool alike = true;
      for (int c = 0; c < 3; ++c) {
        const auto of_a = RangeAround(a, x, y, c);
        const auto of_b = RangeAround(b, x, y, c);
        ink |= std::min(of_a.first, of_b.first) < kInk;
        alike &= within(a.At(x, y, c), of_b) && within(b.At(x, y, c), of_a);
      }
      near += ink;
      agree += ink && alike;
    }
  }
  return near > 0 ? static_cast<double>(agree) / static_cast<double>(near) : 0;
}

}  // namespace kerno::test
