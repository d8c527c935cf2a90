// The surface that previews are painted on: quick, and the same picture on every system.
#include <algorithm>
#include <cmath>
#include <new>
#include <numbers>

#include "platform/coverage_mask.h"
#include "platform/surface_context.h"
#include "platform/thin_stroke.h"

namespace kerno {
namespace {

constexpr double kThin = 1.5;        // pixels: joins and ends of thinner lines do not show
constexpr double kTolerance = 0.05;  // pixels from a curve to its chords
constexpr double kMostChords = 64;

bool IsFinite(const DevicePoint& p) {
  return std::isfinite(p.x) && std::isfinite(p.y);
}
DevicePoint Clamped(const DevicePoint& p) {
  return {std::clamp(p.x, -kMaxDevice, kMaxDevice), std::clamp(p.y, -kMaxDevice, kMaxDevice)};
}

class PreviewContext final : public SurfaceContext {
 public:
  PreviewContext(std::span<uint8_t> pixels, int width, int height)
      : pixels_(pixels), width_(width), mask_(width, height), thin_(mask_) {}

  bool DrawPolygons(std::span<const DevicePoint> points, std::span<const uint32_t> counts) override;
  bool DrawPolyline(std::span<const DevicePoint> points) override;

 private:
  void BeginPath() override {}
  void MoveTo(DevicePoint to) override { mask_.MoveTo(Clamped(to)); }
  void LineTo(DevicePoint to) override { mask_.LineTo(Clamped(to)); }
  void CurveTo(DevicePoint from, DevicePoint control, DevicePoint to) override;
  void CloseFigure() override { mask_.Close(); }
  bool FillPath(uint32_t color) override {
    Fill(FillMode::kWinding, {.color = color});
    return true;
  }

  void AddPolygon(std::span<const DevicePoint> polygon);
  void AddStroke(std::span<const DevicePoint> points, bool closed);
  void AddDashes(std::span<const DevicePoint> points, std::span<const double> dashes);
  void AddLine(std::span<const DevicePoint> points, bool closed);
  void AddDisc(const DevicePoint& centre, double radius);
  void AddWideSegment(const DevicePoint& a, const DevicePoint& b, double half);
  void Fill(FillMode mode, const BrushData& brush);

  std::span<uint8_t> pixels_;
  int width_;
  CoverageMask mask_;
  ThinStroke<CoverageMask> thin_;
  std::vector<DevicePoint> dash_;
};

void PreviewContext::CurveTo(DevicePoint from, DevicePoint control, DevicePoint to) {
  const double bend = std::hypot(from.x - 2 * control.x + to.x, from.y - 2 * control.y + to.y);
  const double chords = std::clamp(std::ceil(std::sqrt(bend / (4 * kTolerance))), 1.0, kMostChords);
  for (double i = 1; i <= chords; ++i) {
    const double t = i / chords, s = 1 - t;
    LineTo({s * s * from.x + 2 * s * t * control.x + t * t * to.x,
            s * s * from.y + 2 * s * t * control.y + t * t * to.y});
  }
}

void PreviewContext::AddPolygon(std::span<const DevicePoint> polygon) {
  bool begun = false;
  for (const DevicePoint& p : polygon) {
    if (!IsFinite(p)) continue;
    begun ? LineTo(p) : MoveTo(p);
    begun = true;
  }
  if (begun) mask_.Close();
}

// Blends the brush's colour in where the mask says.
void PreviewContext::Fill(FillMode mode, const BrushData& brush) {
  const bool pattern = IsPattern(brush);
  const auto channel = [&](int shift) { return static_cast<int>(brush.color >> shift & 255); };
  const int ink[] = {channel(16), channel(8), channel(0)};
  mask_.Sweep(mode, [&](int x, int y, std::span<const uint8_t> coverages) {
    const size_t first =
        static_cast<size_t>(y) * static_cast<size_t>(width_) + static_cast<size_t>(x);
    uint8_t* to = pixels_.data() + first * 4;
    for (const uint8_t coverage : coverages) {
      if (!pattern || HasInk(brush.hatch, x, y)) {
        for (size_t i = 0; i < 3; ++i) {
          to[i] = static_cast<uint8_t>((to[i] * (255 - coverage) + ink[i] * coverage + 127) / 255);
        }
      }
      to += 4;
      ++x;
    }
  });
}

// Runs the way that the sides of AddWideSegment run.
void PreviewContext::AddDisc(const DevicePoint& centre, double radius) {
  constexpr double kFewest = 8, kMost = 64;
  const double turn = std::acos(std::max(0.0, 1 - kTolerance / radius));  // half of a side's
  const double sides = std::clamp(std::ceil(std::numbers::pi / turn), kFewest, kMost);
  for (double i = 0; i < sides; ++i) {
    const double angle = -2 * std::numbers::pi * i / sides;
    const DevicePoint p = {centre.x + radius * std::cos(angle),
                           centre.y + radius * std::sin(angle)};
    i == 0 ? MoveTo(p) : LineTo(p);
  }
  mask_.Close();
}

// Round ends and joins, as the system's geometric pens have.
void PreviewContext::AddWideSegment(const DevicePoint& a, const DevicePoint& b, double half) {
  AddDisc(a, half);
  const double dx = b.x - a.x, dy = b.y - a.y, length = std::hypot(dx, dy);
  if (!(length > 0)) return;
  const DevicePoint side = {dy / length * half, -dx / length * half};
  const DevicePoint corners[] = {{a.x - side.x, a.y - side.y},
                                 {b.x - side.x, b.y - side.y},
                                 {b.x + side.x, b.y + side.y},
                                 {a.x + side.x, a.y + side.y}};
  AddPolygon(corners);
}

void PreviewContext::AddLine(std::span<const DevicePoint> points, bool closed) {
  const double width = CurrentPen()->Data().width;
  if (width <= kThin) return thin_.Add(points, closed, width > 0 ? width : 1.0);
  for (size_t i = 0; i < points.size(); ++i) {
    const bool last = i + 1 == points.size();
    AddWideSegment(points[i], last ? (closed ? points[0] : points[i]) : points[i + 1], width / 2);
  }
}

void PreviewContext::AddDashes(std::span<const DevicePoint> points,
                               std::span<const double> dashes) {
  size_t which = 0;  // even: a dash, odd: a gap
  double left = dashes[0];
  dash_.assign(1, points[0]);
  for (size_t i = 1; i < points.size(); ++i) {
    DevicePoint from = points[i - 1];
    const DevicePoint& to = points[i];
    double length = std::hypot(to.x - from.x, to.y - from.y);
    while (length > left) {
      from = {from.x + (to.x - from.x) * left / length, from.y + (to.y - from.y) * left / length};
      length -= left;
      dash_.push_back(from);
      if (which % 2 == 0) AddLine(dash_, false);
      which = (which + 1) % dashes.size();
      left = dashes[which];
      dash_.assign(1, from);
    }
    left -= length;
    dash_.push_back(to);
  }
  if (which % 2 == 0) AddLine(dash_, false);
}

void PreviewContext::AddStroke(std::span<const DevicePoint> points, bool closed) {
  std::vector<DevicePoint> line;
  std::vector<double> dashes;
  const PenData& pen = CurrentPen()->Data();
  if (pen.style != PenStyle::kSolid) dashes = DashesOf(pen, LengthOf(points));
  if (dashes.empty() && pen.width <= kThin) return AddLine(points, closed);  // looks at each point
  for (const DevicePoint& p : points) {
    if (IsFinite(p)) line.push_back(Clamped(p));
  }
  if (line.empty()) return;
  if (dashes.empty()) return AddLine(line, closed);
  if (closed) line.push_back(line[0]);
  AddDashes(line, dashes);
}

bool PreviewContext::DrawPolygons(std::span<const DevicePoint> points,
                                  std::span<const uint32_t> counts) {
  size_t total = 0;
  for (const uint32_t count : counts) total += count;
  if (total > points.size()) return false;
  const auto each = [&](const auto& visit) {
    std::span<const DevicePoint> rest = points;
    for (const uint32_t count : counts) {
      if (count > 0) visit(rest.first(count));
      rest = rest.subspan(count);
    }
  };
  if (HasBrush()) {
    each([&](std::span<const DevicePoint> polygon) { AddPolygon(polygon); });
    Fill(fill_mode(), CurrentBrush()->Data());
  }
  if (HasPen()) {
    each([&](std::span<const DevicePoint> polygon) { AddStroke(polygon, true); });
    Fill(FillMode::kWinding, {.color = CurrentPen()->Data().color});
  }
  return true;
}

bool PreviewContext::DrawPolyline(std::span<const DevicePoint> points) {
  if (points.size() < 2 || !HasPen()) return true;
  const DevicePoint &first = points.front(), &last = points.back();
  AddStroke(points, points.size() > 2 && first.x == last.x && first.y == last.y);
  Fill(FillMode::kWinding, {.color = CurrentPen()->Data().color});
  return true;
}

class PreviewSurface final : public BitmapSurface {
 public:
  PreviewSurface(int width, int height, uint32_t background)
      : width_(width),
        height_(height),
        pixels_(static_cast<size_t>(width) * static_cast<size_t>(height) * 4),
        context_(pixels_, width, height) {
    for (size_t i = 0; i < pixels_.size(); i += 4) {
      pixels_[i] = static_cast<uint8_t>(background >> 16);
      pixels_[i + 1] = static_cast<uint8_t>(background >> 8);
      pixels_[i + 2] = static_cast<uint8_t>(background);
      pixels_[i + 3] = 255;
    }
  }

  DrawingContext& Context() override { return context_; }
  int Width() const override { return width_; }
  int Height() const override { return height_; }
  std::span<const uint8_t> Pixels() const override { return pixels_; }

 private:
  int width_, height_;
  std::vector<uint8_t> pixels_;
  PreviewContext context_;
};

}  // namespace

std::unique_ptr<BitmapSurface> CreatePreviewSurface(int width, int height, uint32_t background) {
  if (width < 1 || height < 1 || width > kMaxSurfaceSide || height > kMaxSurfaceSide) {
    return nullptr;
  }
  try {
    return std::make_unique<PreviewSurface>(width, height, background);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace kerno
