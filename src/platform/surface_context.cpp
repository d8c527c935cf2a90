#include "platform/surface_context.h"

#include <cstring>

#include "platform/native_records.h"

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

// Adds a native outline with its pen position at `pen`, y turned down.
void SurfaceContext::AddGlyph(std::span<const uint8_t> outline, DevicePoint pen) {
  const double scale = kFixedToPixels / units();
  const auto point_at = [&](const uint8_t* at) {
    int32_t xy[2];
    std::memcpy(xy, at, sizeof xy);
    return DevicePoint{pen.x + xy[0] * scale, pen.y - xy[1] * scale};
  };
  DevicePoint from;
  bool open = false;
  const auto contour = [&](const uint8_t* start) {
    if (open) CloseFigure();
    open = true;
    MoveTo(from = point_at(start));
  };
  WalkNativeOutline(outline, contour, [&](uint16_t kind, const uint8_t* points, size_t count) {
    for (size_t i = 0; i < count; ++i) {
      const DevicePoint p = point_at(points + i * kNativePointSize);
      if (kind != kNativeSpline) {
        LineTo(from = p);
      } else if (i + 1 < count) {
        DevicePoint to = point_at(points + (i + 1) * kNativePointSize);
        if (i + 2 < count) to = {(p.x + to.x) / 2, (p.y + to.y) / 2};
        CurveTo(from, p, to);
        from = to;
      }
    }
  });
  if (open) CloseFigure();
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
