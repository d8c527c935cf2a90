// The parts model as a bitmap picture (.bmp), 24 bits a pixel.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "export/fit.h"
#include "parts/parts.h"
#include "platform/drawing.h"
#include "platform/file_replacement.h"

namespace kerno {

struct BmpOptions {
  // The picture's size in pixels, into which the drawing is fitted. 0: one unit is one pixel, with
  // kBmpMargin around; a drawing whose picture would pass kMaxBmpSide on a side is scaled down, one
  // smaller than a pixel is enlarged to kSmallBmpSide, and the user is told of either.
  int width = 0;
  int height = 0;
  uint32_t background = 0xFFFFFF;
};

inline constexpr double kBmpMargin = 4;  // pixels on each side, beyond the pens' widths
inline constexpr int kMaxBmpSide = 8192;
inline constexpr double kSmallBmpSide = 256;

// Where a drawing of this box goes in its picture.
struct BmpLayout {
  int width = 1;
  int height = 1;
  Affine fit = FlippedY(1, {});
  bool one_to_one = true;
};
BmpLayout LayOutBmp(const Extent3& box, const BmpOptions& options);

// The file's bytes in the order of its parts: the headers, and the rows from the bottom up, blue,
// green, red, each row padded to four bytes.
std::string BmpHeader(int width, int height);
std::string BmpRow(const BitmapSurface& surface, int y);

// Draws the model and writes it. Fails for a size of 1 to kMaxBmpSide left or without memory for
// the picture. An empty model gives an empty picture of the margins.
[[nodiscard]] Status ExportBmp(const PartsA& model, const std::filesystem::path& file,
                               const BmpOptions& options = {});

// The same bytes into an open file, which the caller commits; `name` is for messages.
[[nodiscard]] Status WriteBmp(const PartsA& model, const BmpOptions& options,
                              const std::filesystem::path& name, FileReplacement* out);

}  // namespace kerno
