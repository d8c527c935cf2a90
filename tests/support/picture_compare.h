// Comparing pictures of one drawing that different programs made.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <span>
#include <string>
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

inline Picture PictureOf(const BitmapSurface& surface) {
  Picture picture{surface.Width(), surface.Height(), {}};
  const std::span<const uint8_t> pixels = surface.Pixels();
  for (size_t i = 0; i < pixels.size(); i += 4) {
    for (const size_t c : {2, 1, 0}) picture.rgb.push_back(pixels[i + c]);
  }
  return picture;
}

// Our own picture of a drawing, on white.
inline Picture Drawn(const PartsA& model, int width, int height, const Affine& fit,
                     const DrawOptions& options = {}) {
  const auto surface = CreateBitmapSurface(width, height, 0xFFFFFF);
  DrawParts(surface->Context(), model, fit, options);
  return PictureOf(*surface);
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

namespace detail {

inline bool IsInkNear(const Picture& picture, int x, int y) {
  for (int dy = -1; dy <= 1; ++dy) {
    for (int dx = -1; dx <= 1; ++dx) {
      const int px = std::clamp(x + dx, 0, picture.width - 1);
      const int py = std::clamp(y + dy, 0, picture.height - 1);
      for (int c = 0; c < 3; ++c) {
        if (picture.At(px, py, c) < 200) return true;
      }
    }
  }
  return false;
}

// Whether the pixel's colour lies within what the other picture shows around the same place.
inline bool IsAround(const Picture& a, const Picture& b, int x, int y) {
  constexpr int kShade = 40;
  for (int c = 0; c < 3; ++c) {
    int low = 255;
    int high = 0;
    for (int dy = -1; dy <= 1; ++dy) {
      for (int dx = -1; dx <= 1; ++dx) {
        const int v =
            b.At(std::clamp(x + dx, 0, b.width - 1), std::clamp(y + dy, 0, b.height - 1), c);
        low = std::min(low, v);
        high = std::max(high, v);
      }
    }
    const int v = a.At(x, y, c);
    if (v < low - kShade || v > high + kShade) return false;
  }
  return true;
}

}  // namespace detail

// The share of the pixels near ink on which two pictures of one size agree within anti-aliasing:
// each shows there what the other shows within a pixel's distance. 0 when there is no ink at all.
inline double AgreementNearInk(const Picture& a, const Picture& b) {
  EXPECT_EQ(a.width, b.width);
  EXPECT_EQ(a.height, b.height);
  if (a.width != b.width || a.height != b.height || a.rgb.size() != b.rgb.size()) return 0;
  size_t near = 0;
  size_t agree = 0;
  for (int y = 0; y < a.height; ++y) {
    for (int x = 0; x < a.width; ++x) {
      if (!detail::IsInkNear(a, x, y) && !detail::IsInkNear(b, x, y)) continue;
      ++near;
      agree += detail::IsAround(a, b, x, y) && detail::IsAround(b, a, x, y);
    }
  }
  return near > 0 ? static_cast<double>(agree) / static_cast<double>(near) : 0;
}

}  // namespace kerno::test
