#include "platform/surface_context.h"

#include <cstring>

namespace kerno {
namespace {

constexpr double kFixedToPixels = 1.0 / 65536;

}  // namespace

bool SurfaceContext::PolyPolygon(std::span<const IntPoint> points,
                                 std::span<const int32_t> counts) {
  const double scale = 1.0 / units();
  std::vector<DevicePoint> device;
  device.reserve(points.size());
  for (const IntPoint& p : points) device.push_back({p.x * scale, p.y * scale});
  std::vector<uint32_t> lengths;
  lengths.reserve(counts.size());
  for (const int32_t count : counts) {
    if (count < 0) return false;
    lengths.push_back(static_cast<uint32_t>(count));
  }
  return DrawPolygons(device, lengths);
}

bool SurfaceContext::DrawCircle(DevicePoint centre, double radius) {
  const std::vector<DevicePoint> points = ArcPoints(centre, radius, 0, 360);
  const auto count = static_cast<uint32_t>(points.size());
  return DrawPolygons(points, std::span(&count, 1));
}

bool SurfaceContext::DrawArc(DevicePoint centre, double radius, double start, double sweep) {
  return DrawPolyline(ArcPoints(centre, radius, start, sweep));
}

// Adds a native outline (polygon headers of type 24 and their curve records) with its pen position
// at `pen`, y turned down.
void SurfaceContext::AddGlyph(std::span<const uint8_t> outline, DevicePoint pen) {
  constexpr size_t kHeaderSize = 16;
  constexpr size_t kRecordSize = 4;
  constexpr size_t kPointSize = 8;
  constexpr uint16_t kSpline = 2;
  const double scale = kFixedToPixels / units();
  const auto read_point = [&](size_t at) {
    int32_t xy[2];
    std::memcpy(xy, outline.data() + at, sizeof xy);
    return DevicePoint{pen.x + xy[0] * scale, pen.y - xy[1] * scale};
  };
  for (size_t polygon = 0; polygon + kHeaderSize <= outline.size();) {
    uint32_t size = 0;
    std::memcpy(&size, outline.data() + polygon, sizeof size);
    if (size < kHeaderSize || size > outline.size() - polygon) return;
    const size_t end = polygon + size;
    DevicePoint from = read_point(polygon + 8);
    MoveTo(from);
    for (size_t at = polygon + kHeaderSize; at + kRecordSize <= end;) {
      uint16_t record[2];  // kind and number of points
      std::memcpy(record, outline.data() + at, sizeof record);
      at += kRecordSize;
      if (at + record[1] * kPointSize > end) break;
      for (uint16_t i = 0; i < record[1]; ++i) {
        const DevicePoint p = read_point(at + i * kPointSize);
        if (record[0] != kSpline) {
          LineTo(from = p);
        } else if (i + 1 < record[1]) {
          DevicePoint to = read_point(at + (i + 1u) * kPointSize);
          if (i + 2 < record[1]) to = {(p.x + to.x) / 2, (p.y + to.y) / 2};
          CurveTo(from, p, to);
          from = to;
        }
      }
      at += record[1] * kPointSize;
    }
    CloseFigure();
    polygon = end;
  }
}

bool SurfaceContext::TextOut(int32_t x, int32_t y, std::u16string_view text) {
  TextMetrics metrics;
  if (!GetTextMetrics(&metrics)) return false;
  double pen = x;
  const double baseline = static_cast<double>(y) + metrics.tmAscent;
  std::vector<uint8_t> outline;
  BeginPath();
  for (size_t i = 0; i < text.size(); ++i) {
    char32_t ch = text[i];
    const bool pair =
        (ch & 0xFC00) == 0xD800 && i + 1 < text.size() && (text[i + 1] & 0xFC00) == 0xDC00;
    if (pair) ch = 0x10000 + ((ch & 0x3FF) << 10) + (text[++i] & 0x3FFu);
    GlyphMetrics glyph;
    const uint32_t size = GetGlyphOutline(ch, kGgoNative, &glyph, 0, nullptr, Mat2{});
    if (size == kGdiError) continue;
    outline.resize(size);
    if (size > 0 && GetGlyphOutline(ch, kGgoNative, &glyph, size, outline.data(), Mat2{}) == size) {
      AddGlyph(outline, {pen / units(), baseline / units()});
    }
    pen += glyph.gmCellIncX;
  }
  return FillPath(text_color());
}

std::vector<double> DashesOf(const PenData& pen, double length) {
  std::vector<double> dashes = DashLengths(pen);
  double pattern = 0;
  for (const double dash : dashes) pattern += dash;
  if (pattern < kMinPattern || !(length / pattern < kMaxDashes)) dashes.clear();
  return dashes;
}

bool IsPattern(const BrushData& brush) {
  return brush.style == BrushStyle::kHatched && brush.hatch >= 0 && brush.hatch <= 5;
}

bool HasInk(int32_t hatch, int x, int y) {
  x &= kHatchSide - 1;
  y &= kHatchSide - 1;
  const bool falling = x == y;
  const bool rising = x + y == kHatchSide - 1;
  switch (hatch) {
    case 0:
      return y == 3;
    case 1:
      return x == 3;
    case 2:
      return falling;
    case 3:
      return rising;
    case 4:
      return x == 3 || y == 3;
    default:
      return falling || rising;
  }
}

}  // namespace kerno
