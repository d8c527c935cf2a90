// The bitmap surface: a device-independent bitmap some times finer than the surface, of which each
// pixel is the average.
#include <optional>
#include <vector>

#include "platform/win32/gdi_drawing.h"

namespace kerno {
namespace {

constexpr int64_t kFinestPixels = int64_t{1} << 25;  // 128 MB of them

int ScaleFor(int width, int height) {
  for (const int scale : {4, 3, 2}) {
    if (int64_t{width} * height * scale * scale <= kFinestPixels) return scale;
  }
  return 1;
}

// A memory context with a bitmap of rows from the top down, 4 bytes a pixel.
class FineBitmap {
 public:
  FineBitmap(int width, int height) : dc_(CreateCompatibleDC(nullptr)) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    bitmap_ = CreateDIBSection(dc_, &info, DIB_RGB_COLORS, &bits_, nullptr, 0);
    if (bitmap_ != nullptr) before_ = SelectObject(dc_, bitmap_);
  }
  ~FineBitmap() {
    if (bitmap_ != nullptr) {
      SelectObject(dc_, before_);
      DeleteObject(bitmap_);
    }
    DeleteDC(dc_);
  }
  FineBitmap(const FineBitmap&) = delete;
  FineBitmap& operator=(const FineBitmap&) = delete;

  bool valid() const { return bitmap_ != nullptr; }
  HDC dc() const { return dc_; }
  const uint8_t* bits() const { return static_cast<const uint8_t*>(bits_); }

 private:
  HDC dc_;
  HBITMAP bitmap_ = nullptr;
  HGDIOBJ before_ = nullptr;
  void* bits_ = nullptr;
};

class GdiBitmapSurface final : public BitmapSurface {
 public:
  GdiBitmapSurface(int width, int height, int scale)
      : width_(width), height_(height), scale_(scale), fine_(width * scale, height * scale) {}

  // False when memory does not suffice.
  bool Open(uint32_t background) {
    if (!fine_.valid()) return false;
    const RECT all = {0, 0, width_ * scale_, height_ * scale_};
    const HBRUSH brush = CreateSolidBrush(background);
    FillRect(fine_.dc(), &all, brush);
    DeleteObject(brush);
    context_.emplace(fine_.dc(), scale_, width_, height_);
    pixels_.resize(static_cast<size_t>(width_) * static_cast<size_t>(height_) * 4);
    return true;
  }

  DrawingContext& Context() override { return *context_; }
  int Width() const override { return width_; }
  int Height() const override { return height_; }

  std::span<const uint8_t> Pixels() const override {
    if (!context_->TakeDrawn()) return pixels_;
    GdiFlush();
    const auto scale = static_cast<size_t>(scale_);
    const size_t stride = static_cast<size_t>(width_) * scale * 4;
    uint8_t* to = pixels_.data();
    for (size_t y = 0; y < static_cast<size_t>(height_); ++y) {
      for (size_t x = 0; x < static_cast<size_t>(width_); ++x, to += 4) {
        const uint8_t* block = fine_.bits() + y * scale * stride + x * scale * 4;
        for (size_t channel = 0; channel < 3; ++channel) {
          to[channel] = Average(block + channel, stride, scale);
        }
        to[3] = 255;
      }
    }
    return pixels_;
  }

 private:
  static uint8_t Average(const uint8_t* block, size_t stride, size_t scale) {
    size_t sum = scale * scale / 2;
    for (size_t row = 0; row < scale; ++row) {
      for (size_t column = 0; column < scale; ++column) sum += block[row * stride + column * 4];
    }
    return static_cast<uint8_t>(sum / (scale * scale));
  }

  int width_;
  int height_;
  int scale_;
  FineBitmap fine_;
  mutable std::optional<GdiDrawingContext> context_;
  mutable std::vector<uint8_t> pixels_;
};

}  // namespace

std::unique_ptr<BitmapSurface> CreateBitmapSurface(int width, int height, uint32_t background) {
  if (width < 1 || height < 1 || width > kMaxSurfaceSide || height > kMaxSurfaceSide) {
    return nullptr;
  }
  auto surface = std::make_unique<GdiBitmapSurface>(width, height, ScaleFor(width, height));
  if (!surface->Open(background)) return nullptr;
  return surface;
}

}  // namespace kerno
