#include "export/bmp_writer.h"

#include <algorithm>
#include <cmath>

#include "base/file_wait.h"
#include "base/text.h"
#include "export/draw_parts.h"
#include "export/picture_notes.h"

namespace kerno {
namespace {

constexpr size_t kHeaderSize = 14 + 40;  // BITMAPFILEHEADER and BITMAPINFOHEADER
constexpr size_t kWriteBlock = 1 << 16;
constexpr double kDetail = 1.0 / 16;        // pixels; finer detail shades nothing visibly
constexpr uint32_t kPixelsPerMetre = 3780;  // 96 an inch

void PutLittleEndian(std::string* out, uint32_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) out->push_back(static_cast<char>(value >> 8 * i & 255));
}

size_t RowSize(int width) {
  return (static_cast<size_t>(width) * 3 + 3) / 4 * 4;
}

bool IsSide(int side) {
  return side >= 0 && side <= kMaxBmpSide;
}

// The room that a length takes, in whole pixels with the margins.
int SideFor(double length) {
  return std::max(1, static_cast<int>(std::ceil(length + 2 * kBmpMargin)));
}

}  // namespace

BmpLayout LayOutBmp(const Extent3& any_box, const BmpOptions& options) {
  const Extent3 box = MeasurableBox(any_box);
  BmpLayout layout;
  const double width = box.max.x - box.min.x;
  const double height = box.max.y - box.min.y;
  const double longest = std::max(width, height);
  double scale = 1;
  if (options.width > 0 && options.height > 0) {
    layout.width = options.width;
    layout.height = options.height;
    layout.fit = FitExtent(
        box, {0, 0, static_cast<double>(options.width), static_cast<double>(options.height)},
        kBmpMargin);
    return layout;
  }
  if (longest + 2 * kBmpMargin > kMaxBmpSide) scale = (kMaxBmpSide - 2 * kBmpMargin) / longest;
  if (longest >= kLeastEnlarged && longest < 1) scale = kSmallBmpSide / longest;
  layout.one_to_one = scale == 1;
  layout.width = std::min(kMaxBmpSide, SideFor(width * scale));
  layout.height = std::min(kMaxBmpSide, SideFor(height * scale));
  layout.fit = FlippedY(scale, {kBmpMargin - box.min.x * scale, kBmpMargin + box.max.y * scale});
  return layout;
}

std::string BmpHeader(int width, int height) {
  const auto pixels = static_cast<uint32_t>(RowSize(width) * static_cast<size_t>(height));
  std::string out = "BM";
  PutLittleEndian(&out, static_cast<uint32_t>(kHeaderSize) + pixels, 4);
  PutLittleEndian(&out, 0, 4);
  PutLittleEndian(&out, kHeaderSize, 4);  // where the rows begin
  PutLittleEndian(&out, 40, 4);           // size of the BITMAPINFOHEADER
  PutLittleEndian(&out, static_cast<uint32_t>(width), 4);
  PutLittleEndian(&out, static_cast<uint32_t>(height), 4);  // above zero: from the bottom up
  PutLittleEndian(&out, 1, 2);                              // planes
  PutLittleEndian(&out, 24, 2);
  PutLittleEndian(&out, 0, 4);  // BI_RGB
  PutLittleEndian(&out, pixels, 4);
  PutLittleEndian(&out, kPixelsPerMetre, 4);
  PutLittleEndian(&out, kPixelsPerMetre, 4);
  PutLittleEndian(&out, 0, 4);  // no palette
  PutLittleEndian(&out, 0, 4);
  return out;
}

std::string BmpRow(const BitmapSurface& surface, int y) {
  const auto width = static_cast<size_t>(surface.Width());
  const std::span<const uint8_t> pixels =
      surface.Pixels().subspan(static_cast<size_t>(y) * width * 4, width * 4);
  std::string row(RowSize(surface.Width()), '\0');
  for (size_t x = 0; x < width; ++x) {
    for (size_t c = 0; c < 3; ++c) row[x * 3 + c] = static_cast<char>(pixels[x * 4 + c]);
  }
  return row;
}

Status WriteBmp(const PartsA& model, const BmpOptions& options, const std::filesystem::path& name,
                FileReplacement* out) {
  if (!IsSide(options.width) || !IsSide(options.height) ||
      (options.width == 0) != (options.height == 0)) {
    return Status::Error(Failure::kOther, PathText(name),
                         u"a picture's sides are 1 to 8192 pixels");
  }
  const std::unique_ptr<DeviceContext> fonts = CreateMeasuringContext();
  const BmpLayout layout = LayOutBmp(PictureBox(model, fonts.get()), options);
  const auto surface = CreateBitmapSurface(layout.width, layout.height, options.background);
  if (!surface) {
    return Status::Error(Failure::kOther, PathText(name), u"not enough memory for the picture");
  }
  if (!layout.one_to_one) TellScale(PixelsPerUnit(layout.fit), name);
  TellLeftOut(DrawParts(surface->Context(), model, layout.fit, {.detail = kDetail}), kPicturedXY,
              name);

  std::string block = BmpHeader(layout.width, layout.height);
  for (int y = layout.height - 1; y >= 0; --y) {
    block += BmpRow(*surface, y);
    if (block.size() < kWriteBlock && y > 0) continue;
    Status status = out->Write(block);
    if (!status.ok()) return status;
    block.clear();
  }
  return Status::Ok();
}

Status ExportBmp(const PartsA& model, const std::filesystem::path& file,
                 const BmpOptions& options) {
  return ReplaceWhenFree(file,
                         [&](FileReplacement* out) { return WriteBmp(model, options, file, out); });
}

}  // namespace kerno
