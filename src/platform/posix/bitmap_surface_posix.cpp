// The bitmap surface over the Anti-Grain Geometry rasteriser.
#include <agg_basics.h>
#include <agg_color_rgba.h>
#include <agg_conv_curve.h>
#include <agg_conv_dash.h>
#include <agg_conv_stroke.h>
#include <agg_path_storage.h>
#include <agg_pixfmt_rgba.h>
#include <agg_rasterizer_scanline_aa.h>
#include <agg_renderer_base.h>
#include <agg_renderer_scanline.h>
#include <agg_rendering_buffer.h>
#include <agg_scanline_u.h>
#include <agg_span_allocator.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <new>

#include "platform/posix/agg_sources.h"
#include "platform/surface_context.h"
#include "platform/thin_stroke.h"

namespace kerno {
namespace {

using PixelFormat = agg::pixfmt_bgra32;
using BaseRenderer = agg::renderer_base<PixelFormat>;
using Rasterizer = agg::rasterizer_scanline_aa<agg::rasterizer_sl_clip_dbl>;

// The library's rasteriser as ThinStroke wants it.
class Figures {
 public:
  explicit Figures(Rasterizer& rasterizer) : rasterizer_(rasterizer) {}
  void MoveTo(const DevicePoint& to) { rasterizer_.move_to_d(to.x, to.y); }
  void LineTo(const DevicePoint& to) { rasterizer_.line_to_d(to.x, to.y); }
  void Close() { rasterizer_.close_polygon(); }

 private:
  Rasterizer& rasterizer_;
};

constexpr unsigned kCellBlocks = 16384;  // of 4,096 cells: the rasteriser drops what lies beyond
constexpr double kThin = 1.5;            // pixels: joins and ends of thinner lines do not show

agg::rgba8 ColorOf(uint32_t color) {
  return {color & 255, color >> 8 & 255, color >> 16 & 255, 255};
}

bool SamePlace(const DevicePoint& a, const DevicePoint& b) {
  return a.x == b.x && a.y == b.y;
}

class AggContext final : public SurfaceContext {
 public:
  AggContext(std::vector<uint8_t>& pixels, int width, int height)
      : buffer_(pixels.data(), static_cast<unsigned>(width), static_cast<unsigned>(height),
                width * 4),
        format_(buffer_),
        renderer_(format_),
        rasterizer_(kCellBlocks),
        figures_(rasterizer_),
        thin_(figures_) {
    ClipToSurface();
  }

  void Clear(uint32_t color) { renderer_.clear(ColorOf(color)); }

  bool DrawPolygons(std::span<const DevicePoint> points, std::span<const uint32_t> counts) override;
  bool DrawPolyline(std::span<const DevicePoint> points) override;

 private:
  void BeginPath() override { path_.remove_all(); }
  void MoveTo(DevicePoint to) override { path_.move_to(to.x, to.y); }
  void LineTo(DevicePoint to) override { path_.line_to(to.x, to.y); }
  void CurveTo(DevicePoint /*from*/, DevicePoint control, DevicePoint to) override {
    path_.curve3(control.x, control.y, to.x, to.y);
  }
  void CloseFigure() override { path_.close_polygon(); }
  bool FillPath(uint32_t color) override;

  void AddStroke(std::span<const DevicePoint> points, bool closed);
  template <class Source>
  void AddSolidStroke(Source& source);
  void FillWithBrush();
  void StrokeWithPen();
  void RenderSolid(uint32_t color);
  template <class Draw>
  void Render(const Draw& draw);
  void ClipToSurface() { rasterizer_.clip_box(0, 0, buffer_.width(), buffer_.height()); }

  agg::rendering_buffer buffer_;
  PixelFormat format_;
  BaseRenderer renderer_;
  Rasterizer rasterizer_;
  Figures figures_;
  ThinStroke<Figures> thin_;
  agg::scanline_u8 scanline_;
  agg::span_allocator<agg::rgba8> spans_;
  agg::path_storage path_;
};

// The library's arrays free what they hold before they ask for more; where they get none, they
// would free it again at their end. What has no memory is given up, and its place begins empty.
template <class Draw>
void AggContext::Render(const Draw& draw) {
  try {
    draw();
  } catch (const std::bad_alloc&) {
    std::construct_at(&rasterizer_, kCellBlocks);
    std::construct_at(&scanline_);
    std::construct_at(&spans_);
    ClipToSurface();
    throw;
  }
  rasterizer_.reset();
}

void AggContext::RenderSolid(uint32_t color) {
  Render(
      [&] { agg::render_scanlines_aa_solid(rasterizer_, scanline_, renderer_, ColorOf(color)); });
}

// Fills what the rasteriser holds.
void AggContext::FillWithBrush() {
  rasterizer_.filling_rule(fill_mode() == FillMode::kWinding ? agg::fill_non_zero
                                                             : agg::fill_even_odd);
  const BrushData& brush = CurrentBrush()->Data();
  if (IsPattern(brush)) {
    HatchSpans hatch(ColorOf(brush.color), brush.hatch);
    Render([&] { agg::render_scanlines_aa(rasterizer_, scanline_, renderer_, spans_, hatch); });
  } else {
    RenderSolid(brush.color);
  }
}

void AggContext::StrokeWithPen() {
  rasterizer_.filling_rule(agg::fill_non_zero);
  RenderSolid(CurrentPen()->Data().color);
}

// Wide lines have round ends and joins, as the system's geometric pens; on a hairline neither
// shows.
template <class Source>
void AggContext::AddSolidStroke(Source& source) {
  agg::conv_stroke<Source> stroke(source);
  const double width = CurrentPen()->Data().width;
  const bool wide = width > 1;
  stroke.width(width > 0 ? width : 1.0);
  stroke.line_cap(wide ? agg::round_cap : agg::butt_cap);
  stroke.line_join(wide ? agg::round_join : agg::miter_join_revert);
  rasterizer_.add_path(stroke);
}

void AggContext::AddStroke(std::span<const DevicePoint> points, bool closed) {
  PointSource source(points, closed);
  const PenData& pen = CurrentPen()->Data();
  std::vector<double> dashes;
  if (pen.style != PenStyle::kSolid) dashes = DashesOf(pen, LengthOf(points));
  if (dashes.empty()) {
    const double width = pen.width;
    if (width <= kThin) {
      thin_.Add(points, closed, width > 0 ? width : 1.0);
    } else {
      AddSolidStroke(source);
    }
    return;
  }
  agg::conv_dash<PointSource> dash(source);
  for (size_t i = 0; i + 1 < dashes.size(); i += 2) dash.add_dash(dashes[i], dashes[i + 1]);
  AddSolidStroke(dash);
}

bool AggContext::DrawPolygons(std::span<const DevicePoint> points,
                              std::span<const uint32_t> counts) {
  size_t total = 0;
  for (uint32_t count : counts) total += count;
  if (total > points.size()) return false;

  const auto for_each_polygon = [&](auto&& visit) {
    size_t at = 0;
    for (uint32_t count : counts) {
      std::span<const DevicePoint> polygon = points.subspan(at, count);
      at += count;
      if (!polygon.empty()) visit(polygon);
    }
  };
  if (HasBrush()) {
    for_each_polygon([&](std::span<const DevicePoint> polygon) {
      PointSource source(polygon, true);
      rasterizer_.add_path(source);
    });
    FillWithBrush();
  }
  if (HasPen()) {
    for_each_polygon([&](std::span<const DevicePoint> polygon) { AddStroke(polygon, true); });
    StrokeWithPen();
  }
  return true;
}

bool AggContext::DrawPolyline(std::span<const DevicePoint> points) {
  if (points.size() < 2 || !HasPen()) return true;
  const bool closed = points.size() > 2 && SamePlace(points.front(), points.back());
  AddStroke(points, closed);
  StrokeWithPen();
  return true;
}

bool AggContext::FillPath(uint32_t color) {
  agg::conv_curve<agg::path_storage> curves(path_);
  rasterizer_.add_path(curves);
  rasterizer_.filling_rule(agg::fill_non_zero);
  RenderSolid(color);
  return true;
}

class AggSurface : public BitmapSurface {
 public:
  AggSurface(int width, int height, uint32_t background)
      : width_(width),
        height_(height),
        pixels_(static_cast<size_t>(width) * static_cast<size_t>(height) * 4),
        context_(pixels_, width, height) {
    context_.Clear(background);
  }

  DrawingContext& Context() override { return context_; }
  int Width() const override { return width_; }
  int Height() const override { return height_; }
  std::span<const uint8_t> Pixels() const override { return pixels_; }

 private:
  int width_;
  int height_;
  std::vector<uint8_t> pixels_;
  AggContext context_;
};

}  // namespace

std::unique_ptr<BitmapSurface> CreateBitmapSurface(int width, int height, uint32_t background) {
  if (width < 1 || height < 1 || width > kMaxSurfaceSide || height > kMaxSurfaceSide) {
    return nullptr;
  }
  try {
    return std::make_unique<AggSurface>(width, height, background);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace kerno
