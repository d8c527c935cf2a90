#include "platform/win32/gdi_drawing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace kerno {
namespace {

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

bool IsFar(DevicePoint p, double far_off) {
  return !(std::fabs(p.x) <= far_off && std::fabs(p.y) <= far_off);
}

// The finite points, within kMaxDevice.
std::vector<DevicePoint> Usable(std::span<const DevicePoint> points) {
  std::vector<DevicePoint> usable;
  usable.reserve(points.size());
  for (const DevicePoint& p : points) {
    if (!std::isfinite(p.x) || !std::isfinite(p.y)) continue;
    usable.push_back(
        {std::clamp(p.x, -kMaxDevice, kMaxDevice), std::clamp(p.y, -kMaxDevice, kMaxDevice)});
  }
  return usable;
}

// A side of the square within which things are drawn: what has a positive distance is inside.
struct Side {
  double x, y, far_off;
  double Distance(DevicePoint p) const { return far_off - p.x * x - p.y * y; }
};

std::array<Side, 4> SidesOf(double far_off) {
  return {Side{1, 0, far_off}, {-1, 0, far_off}, {0, 1, far_off}, {0, -1, far_off}};
}

DevicePoint Crossing(const Side& side, DevicePoint a, DevicePoint b) {
  const double from = side.Distance(a);
  const double t = from / (from - side.Distance(b));
  return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
}

// A polygon's part within the square; where it was cut it runs along the square's sides.
std::vector<DevicePoint> ClipPolygon(std::vector<DevicePoint> points, double far_off) {
  for (const Side& side : SidesOf(far_off)) {
    std::vector<DevicePoint> kept;
    for (size_t i = 0; i < points.size(); ++i) {
      const DevicePoint& a = points[i];
      const DevicePoint& b = points[(i + 1) % points.size()];
      const bool a_inside = side.Distance(a) >= 0;
      if (a_inside) kept.push_back(a);
      if (a_inside != (side.Distance(b) >= 0)) kept.push_back(Crossing(side, a, b));
    }
    points = std::move(kept);
  }
  return points;
}

// The part of a line within the square.
std::optional<std::array<DevicePoint, 2>> ClipLine(DevicePoint a, DevicePoint b, double far_off) {
  for (const Side& side : SidesOf(far_off)) {
    const bool a_inside = side.Distance(a) >= 0;
    const bool b_inside = side.Distance(b) >= 0;
    if (!a_inside && !b_inside) return std::nullopt;
    if (!a_inside) a = Crossing(side, a, b);
    if (!b_inside) b = Crossing(side, a, b);
  }
  return std::array{a, b};
}

}  // namespace

GdiDrawingContext::GdiDrawingContext(HDC dc, int scale, int width, int height)
    : dc_(dc), scale_(scale), width_(width), height_(height) {
  SetBkMode(dc_, TRANSPARENT);
}

// How far from the origin things are drawn, in pixels: no pen reaches back from there.
double GdiDrawingContext::Far() const {
  return 3.0 * (width_ + height_) + 1000;
}

POINT GdiDrawingContext::ToFine(DevicePoint point) const {
  const double far_off = Far();
  const auto fine = [&](double value) {
    return static_cast<LONG>(std::lround(std::clamp(value, -far_off, far_off) * scale_));
  };
  return {fine(point.x), fine(point.y)};
}

// Wide lines have round ends and joins; on a hairline neither shows.
HPEN GdiDrawingContext::MakePen(double length) const {
  const PenData& data = CurrentPen()->Data();
  const LOGBRUSH brush = {BS_SOLID, data.color, 0};
  const double wanted = std::isfinite(data.width) && data.width > 0 ? data.width : 1.0;
  const auto width =
      static_cast<DWORD>(std::clamp(std::round(wanted * scale_), 1.0, Far() / 2 * scale_));
  DWORD style = PS_GEOMETRIC;
  style |= wanted > 1 ? static_cast<DWORD>(PS_ENDCAP_ROUND) | static_cast<DWORD>(PS_JOIN_ROUND)
                      : static_cast<DWORD>(PS_ENDCAP_FLAT) | static_cast<DWORD>(PS_JOIN_MITER);
  std::vector<DWORD> steps;
  for (const double dash : DashesOf(data, length / scale_)) {
    steps.push_back(static_cast<DWORD>(std::clamp(std::round(dash * scale_), 1.0, 1e6)));
  }
  if (steps.empty()) return ExtCreatePen(style | PS_SOLID, width, &brush, 0, nullptr);
  return ExtCreatePen(style | PS_USERSTYLE, width, &brush, static_cast<DWORD>(steps.size()),
                      steps.data());
}

// Fills what the clip region leaves: the pixels without ink stay as they are.
void GdiDrawingContext::FillWithPattern(const BrushData& brush) {
  constexpr DWORD kAnd = 0x00A000C9;  // pattern and destination
  constexpr DWORD kOr = 0x00FA0089;   // pattern or destination
  const int side = kHatchSide * scale_;
  const uint32_t ink =
      (brush.color & 0xFF) << 16 | (brush.color & 0xFF00) | (brush.color >> 16 & 0xFF);
  struct {
    BITMAPINFOHEADER header;
    uint32_t pixels[kHatchSide * kHatchSide * 16];
  } bitmap{};
  bitmap.header = {sizeof bitmap.header, side, -side, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  const auto fill = [&](uint32_t with_ink, uint32_t without, DWORD operation) {
    for (int i = 0; i < side * side; ++i) {
      const bool inked = HasInk(brush.hatch, i % side / scale_, i / side / scale_);
      bitmap.pixels[i] = inked ? with_ink : without;
    }
    const Selected pattern(dc_, CreateDIBPatternBrushPt(&bitmap, DIB_RGB_COLORS));
    PatBlt(dc_, 0, 0, width_ * scale_, height_ * scale_, operation);
  };
  fill(0, 0xFFFFFF, kAnd);
  fill(ink, 0, kOr);
}

bool GdiDrawingContext::FillPolygons(const std::vector<POINT>& points,
                                     const std::vector<INT>& counts) {
  const BrushData& brush = CurrentBrush()->Data();
  SetPolyFillMode(dc_, fill_mode() == FillMode::kWinding ? WINDING : ALTERNATE);
  const auto count = static_cast<int>(counts.size());
  if (!IsPattern(brush)) {
    const Selected no_pen(dc_, GetStockObject(NULL_PEN));
    const Selected fill(dc_, CreateSolidBrush(brush.color));
    return ::PolyPolygon(dc_, points.data(), counts.data(), count) != 0;
  }
  const int saved = SaveDC(dc_);
  ::BeginPath(dc_);
  const bool drawn = ::PolyPolygon(dc_, points.data(), counts.data(), count) != 0;
  EndPath(dc_);
  if (drawn && SelectClipPath(dc_, RGN_AND)) FillWithPattern(brush);
  RestoreDC(dc_, saved);
  return drawn;
}

bool GdiDrawingContext::OutlinePolygons(const std::vector<POINT>& points,
                                        const std::vector<INT>& counts) {
  const Selected line(dc_, MakePen(LengthOf<POINT>(points)));
  const Selected no_fill(dc_, GetStockObject(NULL_BRUSH));
  return ::PolyPolygon(dc_, points.data(), counts.data(), static_cast<int>(counts.size())) != 0;
}

bool GdiDrawingContext::DrawPolygons(std::span<const DevicePoint> points,
                                     std::span<const uint32_t> counts) {
  drawn_ = true;
  size_t total = 0;
  for (const uint32_t count : counts) total += count;
  if (total > points.size()) return false;
  std::vector<POINT> fine;
  std::vector<INT> lengths;
  fine.reserve(total);
  size_t at = 0;
  for (const uint32_t count : counts) {
    const size_t before = fine.size();
    for (const DevicePoint& p : ClipPolygon(Usable(points.subspan(at, count)), Far())) {
      fine.push_back(ToFine(p));
    }
    at += count;
    // The system takes no polygon of fewer than two points.
    if (fine.size() - before == 1) fine.push_back(fine.back());
    if (fine.size() > before) lengths.push_back(static_cast<INT>(fine.size() - before));
  }
  if (lengths.empty()) return true;
  const bool filled = !HasBrush() || FillPolygons(fine, lengths);
  const bool outlined = !HasPen() || OutlinePolygons(fine, lengths);
  return filled && outlined;
}

// A line all of whose points are near.
bool GdiDrawingContext::DrawPiece(const std::vector<DevicePoint>& points) {
  if (points.size() < 2) return true;
  std::vector<POINT> fine;
  fine.reserve(points.size());
  for (const DevicePoint& p : points) fine.push_back(ToFine(p));
  const Selected line(dc_, MakePen(LengthOf<POINT>(fine)));
  const auto count = static_cast<int>(fine.size());
  const bool closed =
      count > 2 && fine.front().x == fine.back().x && fine.front().y == fine.back().y;
  if (!closed) return Polyline(dc_, fine.data(), count) != 0;
  const Selected no_fill(dc_, GetStockObject(NULL_BRUSH));
  return ::Polygon(dc_, fine.data(), count) != 0;
}

bool GdiDrawingContext::DrawPolyline(std::span<const DevicePoint> points) {
  if (!HasPen()) return true;
  drawn_ = true;
  const double far_off = Far();
  const std::vector<DevicePoint> usable = Usable(points);
  const bool near_all = std::none_of(usable.begin(), usable.end(),
                                     [far_off](const DevicePoint& p) { return IsFar(p, far_off); });
  if (near_all) return DrawPiece(usable);
  std::vector<DevicePoint> piece;
  bool drawn = true;
  for (size_t i = 1; i < usable.size(); ++i) {
    const auto part = ClipLine(usable[i - 1], usable[i], far_off);
    if (!part) continue;
    if (piece.empty() || IsFar(usable[i - 1], far_off)) {
      drawn &= DrawPiece(piece);
      piece = {part->front()};
    }
    piece.push_back(part->back());
  }
  return DrawPiece(piece) && drawn;
}

void GdiDrawingContext::BeginPath() {
  ::BeginPath(dc_);
}

void GdiDrawingContext::MoveTo(DevicePoint to) {
  const POINT fine = ToFine(to);
  MoveToEx(dc_, fine.x, fine.y, nullptr);
}

void GdiDrawingContext::LineTo(DevicePoint to) {
  const POINT fine = ToFine(to);
  ::LineTo(dc_, fine.x, fine.y);
}

// The quadratic piece as a cubic one.
void GdiDrawingContext::CurveTo(DevicePoint from, DevicePoint control, DevicePoint to) {
  const std::array<POINT, 3> curve = {
      ToFine({from.x + (control.x - from.x) * 2 / 3, from.y + (control.y - from.y) * 2 / 3}),
      ToFine({to.x + (control.x - to.x) * 2 / 3, to.y + (control.y - to.y) * 2 / 3}), ToFine(to)};
  PolyBezierTo(dc_, curve.data(), 3);
}

void GdiDrawingContext::CloseFigure() {
  ::CloseFigure(dc_);
}

bool GdiDrawingContext::FillPath(uint32_t color) {
  drawn_ = true;
  EndPath(dc_);
  SetPolyFillMode(dc_, WINDING);
  const Selected fill(dc_, CreateSolidBrush(color));
  return ::FillPath(dc_) != 0;
}

}  // namespace kerno
