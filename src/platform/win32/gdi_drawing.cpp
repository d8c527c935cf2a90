#include "platform/win32/gdi_drawing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace kerno {
namespace {

constexpr int kHatchStep = 8;         // pixels between the lines of a hatch
constexpr double kMaxDashes = 65536;  // of one line; a line of more is drawn solid
constexpr double kMinPattern = 0.25;  // pixels; a finer dash pattern is drawn solid
constexpr double kFixedToPixels = 1.0 / 65536;

// An object selected while it lives, and deleted afterwards.
class Selected {
 public:
  Selected(HDC dc, HGDIOBJ object) : dc_(dc), object_(object), before_(SelectObject(dc, object)) {}
  ~Selected() {
    SelectObject(dc_, before_);
    DeleteObject(object_);  // stock objects stay
  }
  Selected(const Selected&) = delete;
  Selected& operator=(const Selected&) = delete;

 private:
  HDC dc_;
  HGDIOBJ object_;
  HGDIOBJ before_;
};

double LengthOf(std::span<const POINT> points) {
  double length = 0;
  for (size_t i = 1; i < points.size(); ++i) {
    length += std::hypot(points[i].x - points[i - 1].x, points[i].y - points[i - 1].y);
  }
  return length;
}

// Wide lines have round ends and joins; on a hairline neither shows.
HPEN MakePen(const PenData& data, int scale, double length) {
  const LOGBRUSH brush = {BS_SOLID, data.color, 0};
  const double wanted = std::isfinite(data.width) && data.width > 0 ? data.width : 1.0;
  const auto width = static_cast<DWORD>(std::clamp(std::round(wanted * scale), 1.0, 1e6));
  DWORD style = PS_GEOMETRIC;
  style |= wanted > 1 ? static_cast<DWORD>(PS_ENDCAP_ROUND) | static_cast<DWORD>(PS_JOIN_ROUND)
                      : static_cast<DWORD>(PS_ENDCAP_FLAT) | static_cast<DWORD>(PS_JOIN_MITER);
  const std::vector<double> dashes = DashLengths(data);
  double pattern = 0;
  for (const double dash : dashes) pattern += dash;
  if (dashes.empty() || pattern < kMinPattern || !(length / (pattern * scale) < kMaxDashes)) {
    return ExtCreatePen(style | PS_SOLID, width, &brush, 0, nullptr);
  }
  std::vector<DWORD> steps;
  for (const double dash : dashes) {
    steps.push_back(static_cast<DWORD>(std::max(1.0, std::round(dash * scale))));
  }
  return ExtCreatePen(style | PS_USERSTYLE, width, &brush, static_cast<DWORD>(steps.size()),
                      steps.data());
}

bool IsHatch(const BrushData& brush) {
  return brush.style == BrushStyle::kHatched && brush.hatch >= 0 && brush.hatch <= 5;
}

template <class T>
T Read(const std::vector<uint8_t>& bytes, size_t at) {
  T value;
  std::memcpy(&value, bytes.data() + at, sizeof value);
  return value;
}

}  // namespace

GdiDrawingContext::GdiDrawingContext(HDC dc, int scale, int width, int height)
    : dc_(dc), scale_(scale), width_(width), height_(height) {
  SetBkMode(dc_, TRANSPARENT);
}

GdiDrawingContext::~GdiDrawingContext() = default;

POINT GdiDrawingContext::ToFine(DevicePoint point) const {
  const auto fine = [this](double value) {
    return static_cast<LONG>(std::lround(std::clamp(value, -kMaxDevice, kMaxDevice) * scale_));
  };
  return {fine(point.x), fine(point.y)};
}

// The lines of a hatch over everything that the clip region leaves.
void GdiDrawingContext::DrawHatch(int32_t hatch, uint32_t color) {
  const LOGBRUSH brush = {BS_SOLID, color, 0};
  const DWORD style = static_cast<DWORD>(PS_GEOMETRIC) | static_cast<DWORD>(PS_ENDCAP_FLAT);
  const Selected pen(dc_, ExtCreatePen(style, static_cast<DWORD>(scale_), &brush, 0, nullptr));
  const int step = kHatchStep * scale_;
  const int right = width_ * scale_;
  const int bottom = height_ * scale_;
  const int middle = step / 2;
  const auto line = [this](int x0, int y0, int x1, int y1) {
    MoveToEx(dc_, x0, y0, nullptr);
    LineTo(dc_, x1, y1);
  };
  const bool horizontal = hatch == HS_HORIZONTAL || hatch == HS_CROSS;
  const bool vertical = hatch == HS_VERTICAL || hatch == HS_CROSS;
  const bool falling = hatch == HS_FDIAGONAL || hatch == HS_DIAGCROSS;
  const bool rising = hatch == HS_BDIAGONAL || hatch == HS_DIAGCROSS;
  for (int y = middle; horizontal && y < bottom; y += step) line(0, y, right, y);
  for (int x = middle; vertical && x < right; x += step) line(x, 0, x, bottom);
  const int first = -(bottom + step - 1) / step * step;
  for (int x = first; falling && x < right; x += step) line(x, 0, x + bottom, bottom);
  for (int x = 0; rising && x < right + bottom; x += step) line(x, 0, x - bottom, bottom);
}

bool GdiDrawingContext::FillPolygons(const std::vector<POINT>& points,
                                     const std::vector<INT>& counts) {
  const BrushData& brush = CurrentBrush()->Data();
  if (brush.style == BrushStyle::kHollow) return true;
  SetPolyFillMode(dc_, fill_mode_ == FillMode::kWinding ? WINDING : ALTERNATE);
  const auto count = static_cast<int>(counts.size());
  if (!IsHatch(brush)) {
    const Selected no_pen(dc_, GetStockObject(NULL_PEN));
    const Selected fill(dc_, CreateSolidBrush(brush.color));
    return ::PolyPolygon(dc_, points.data(), counts.data(), count) != 0;
  }
  const int saved = SaveDC(dc_);
  BeginPath(dc_);
  const bool drawn = ::PolyPolygon(dc_, points.data(), counts.data(), count) != 0;
  EndPath(dc_);
  if (drawn && SelectClipPath(dc_, RGN_AND)) DrawHatch(brush.hatch, brush.color);
  RestoreDC(dc_, saved);
  return drawn;
}

bool GdiDrawingContext::OutlinePolygons(const std::vector<POINT>& points,
                                        const std::vector<INT>& counts) {
  const PenData& pen = CurrentPen()->Data();
  if (pen.style == PenStyle::kNull) return true;
  const Selected line(dc_, MakePen(pen, scale_, LengthOf(points)));
  const Selected no_fill(dc_, GetStockObject(NULL_BRUSH));
  return ::PolyPolygon(dc_, points.data(), counts.data(), static_cast<int>(counts.size())) != 0;
}

bool GdiDrawingContext::DrawPolygons(std::span<const DevicePoint> points,
                                     std::span<const uint32_t> counts) {
  size_t total = 0;
  for (const uint32_t count : counts) total += count;
  if (total > points.size()) return false;
  std::vector<POINT> fine;
  std::vector<INT> lengths;
  fine.reserve(total);
  size_t at = 0;
  for (const uint32_t count : counts) {
    const size_t before = fine.size();
    for (const DevicePoint& p : points.subspan(at, count)) {
      if (std::isfinite(p.x) && std::isfinite(p.y)) fine.push_back(ToFine(p));
    }
    at += count;
    // The system takes no polygon of fewer than two points.
    if (fine.size() - before == 1) fine.push_back(fine.back());
    if (fine.size() > before) lengths.push_back(static_cast<INT>(fine.size() - before));
  }
  if (lengths.empty()) return true;
  const bool filled = FillPolygons(fine, lengths);
  return OutlinePolygons(fine, lengths) && filled;
}

bool GdiDrawingContext::PolyPolygon(std::span<const IntPoint> points,
                                    std::span<const int32_t> counts) {
  const double factor = 1.0 / units_;
  std::vector<DevicePoint> device;
  device.reserve(points.size());
  for (const IntPoint& p : points) device.push_back({p.x * factor, p.y * factor});
  std::vector<uint32_t> lengths;
  lengths.reserve(counts.size());
  for (const int32_t count : counts) {
    if (count < 0) return false;
    lengths.push_back(static_cast<uint32_t>(count));
  }
  return DrawPolygons(device, lengths);
}

bool GdiDrawingContext::DrawPolyline(std::span<const DevicePoint> points) {
  const PenData& pen = CurrentPen()->Data();
  if (pen.style == PenStyle::kNull) return true;
  std::vector<POINT> fine;
  fine.reserve(points.size());
  for (const DevicePoint& p : points) {
    if (std::isfinite(p.x) && std::isfinite(p.y)) fine.push_back(ToFine(p));
  }
  if (fine.size() < 2) return true;
  const Selected line(dc_, MakePen(pen, scale_, LengthOf(fine)));
  const auto count = static_cast<int>(fine.size());
  const bool closed =
      count > 2 && fine.front().x == fine.back().x && fine.front().y == fine.back().y;
  if (!closed) return Polyline(dc_, fine.data(), count) != 0;
  const Selected no_fill(dc_, GetStockObject(NULL_BRUSH));
  return ::Polygon(dc_, fine.data(), count) != 0;
}

bool GdiDrawingContext::DrawCircle(DevicePoint centre, double radius) {
  const std::vector<DevicePoint> points = ArcPoints(centre, radius, 0, 360);
  const auto count = static_cast<uint32_t>(points.size());
  return DrawPolygons(points, std::span(&count, 1));
}

bool GdiDrawingContext::DrawArc(DevicePoint centre, double radius, double start, double sweep) {
  return DrawPolyline(ArcPoints(centre, radius, start, sweep));
}

// Adds a native outline to the path that is being made, its pen position at (x, y), y turned down.
void GdiDrawingContext::AddGlyphPath(const std::vector<uint8_t>& outline, double x, double y) {
  constexpr size_t kHeaderSize = sizeof(TTPOLYGONHEADER);
  constexpr size_t kRecordSize = 4;
  constexpr size_t kPointSize = sizeof(POINTFX);
  const double factor = kFixedToPixels / units_;
  const auto point = [&](size_t at) {
    return DevicePoint{x + Read<int32_t>(outline, at) * factor,
                       y - Read<int32_t>(outline, at + 4) * factor};
  };
  for (size_t polygon = 0; polygon + kHeaderSize <= outline.size();) {
    const auto size = Read<uint32_t>(outline, polygon);
    if (size < kHeaderSize || size > outline.size() - polygon) return;
    DevicePoint from = point(polygon + 8);
    const POINT start = ToFine(from);
    MoveToEx(dc_, start.x, start.y, nullptr);
    for (size_t at = polygon + kHeaderSize; at + kRecordSize <= polygon + size;) {
      const auto kind = Read<uint16_t>(outline, at);
      const auto count = Read<uint16_t>(outline, at + 2);
      at += kRecordSize;
      if (at + count * kPointSize > polygon + size) return;
      for (uint16_t i = 0; i < count; ++i) {
        const DevicePoint p = point(at + i * kPointSize);
        if (kind != TT_PRIM_QSPLINE) {
          const POINT to = ToFine(from = p);
          LineTo(dc_, to.x, to.y);
        } else if (i + 1 < count) {
          DevicePoint to = point(at + (i + 1u) * kPointSize);
          if (i + 2 < count) to = {(p.x + to.x) / 2, (p.y + to.y) / 2};
          // The quadratic piece as a cubic one.
          const std::array<POINT, 3> curve = {
              ToFine({from.x + (p.x - from.x) * 2 / 3, from.y + (p.y - from.y) * 2 / 3}),
              ToFine({to.x + (p.x - to.x) * 2 / 3, to.y + (p.y - to.y) * 2 / 3}), ToFine(to)};
          PolyBezierTo(dc_, curve.data(), 3);
          from = to;
        }
      }
      at += count * kPointSize;
    }
    CloseFigure(dc_);
    polygon += size;
  }
}

bool GdiDrawingContext::TextOut(int32_t x, int32_t y, std::u16string_view text) {
  TextMetrics metrics;
  if (!GetTextMetrics(&metrics)) return false;
  double pen = static_cast<double>(x) / units_;
  const double baseline = (static_cast<double>(y) + metrics.tmAscent) / units_;
  std::vector<uint8_t> outline;
  BeginPath(dc_);
  for (size_t i = 0; i < text.size(); ++i) {
    char32_t ch = text[i];
    const bool pair =
        (ch & 0xFC00) == 0xD800 && i + 1 < text.size() && (text[i + 1] & 0xFC00) == 0xDC00;
    if (pair) ch = 0x10000 + ((ch & 0x3FF) << 10) + (text[++i] & 0x3FFu);
    GlyphMetrics glyph;
    const uint32_t size = GetGlyphOutline(ch, kGgoNative, &glyph, 0, nullptr, Mat2{});
    if (size == kGdiError) continue;
    outline.resize(size);
    if (GetGlyphOutline(ch, kGgoNative, &glyph, size, outline.data(), Mat2{}) == size) {
      AddGlyphPath(outline, pen, baseline);
    }
    pen += static_cast<double>(glyph.gmCellIncX) / units_;
  }
  EndPath(dc_);
  SetPolyFillMode(dc_, WINDING);
  const Selected fill(dc_, CreateSolidBrush(text_color_));
  return FillPath(dc_) != 0;
}

}  // namespace kerno
