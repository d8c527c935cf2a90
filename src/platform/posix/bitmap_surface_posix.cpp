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
#include <cstring>
#include <new>
#include <utility>

#include "platform/drawing.h"
#include "platform/posix/agg_sources.h"
#include "platform/posix/thin_stroke.h"

namespace kerno {
namespace {

using PixelFormat = agg::pixfmt_bgra32;
using BaseRenderer = agg::renderer_base<PixelFormat>;
using Rasterizer = agg::rasterizer_scanline_aa<agg::rasterizer_sl_clip_dbl>;

constexpr unsigned kCellBlocks = 16384;  // of 4,096 cells: the rasteriser drops what lies beyond
constexpr double kMaxDashes = 65536;     // of one line; a line of more is drawn solid
constexpr double kThin = 1.5;            // pixels: joins and ends of thinner lines do not show
constexpr double kMinPattern = 0.25;     // pixels; a finer dash pattern is drawn solid
constexpr double kFixedToPixels = 1.0 / 65536;

agg::rgba8 ColorOf(uint32_t color) {
  return {color & 255, color >> 8 & 255, color >> 16 & 255, 255};
}

class AggPen : public Pen {
 public:
  explicit AggPen(const PenData& data) : data_(data) {}
  const PenData& Data() const override { return data_; }

 private:
  PenData data_;
};

class AggBrush : public Brush {
 public:
  explicit AggBrush(const BrushData& data) : data_(data) {}
  const BrushData& Data() const override { return data_; }

 private:
  BrushData data_;
};

double LengthOf(std::span<const DevicePoint> points) {
  double length = 0;
  for (size_t i = 1; i < points.size(); ++i) {
    length += std::hypot(points[i].x - points[i - 1].x, points[i].y - points[i - 1].y);
  }
  return length;
}

bool SamePlace(const DevicePoint& a, const DevicePoint& b) {
  return a.x == b.x && a.y == b.y;
}

// Fonts are those of a measuring context; drawing goes to the pixels.
class SurfaceContext : public DrawingContext {
 public:
  SurfaceContext(std::vector<uint8_t>& pixels, int width, int height)
      : buffer_(pixels.data(), static_cast<unsigned>(width), static_cast<unsigned>(height),
                width * 4),
        format_(buffer_),
        renderer_(format_),
        rasterizer_(kCellBlocks),
        thin_(rasterizer_) {
    rasterizer_.clip_box(0, 0, width, height);
  }

  void Clear(uint32_t color) { renderer_.clear(ColorOf(color)); }

  std::unique_ptr<Font> CreateFontIndirect(const LogFont& wanted) override {
    return Fonts().CreateFontIndirect(wanted);
  }
  Font* SelectFont(Font* font) override { return Fonts().SelectFont(font); }
  Font* SelectedFont() const override { return fonts_ ? fonts_->SelectedFont() : nullptr; }
  bool GetTextMetrics(TextMetrics* metrics) override { return Fonts().GetTextMetrics(metrics); }
  uint32_t GetGlyphOutline(char32_t ch, uint32_t format, GlyphMetrics* metrics, uint32_t size,
                           void* buffer, const Mat2& matrix) override {
    return Fonts().GetGlyphOutline(ch, format, metrics, size, buffer, matrix);
  }
  bool GetTextExtent(std::u16string_view text, Extent* extent) override {
    return Fonts().GetTextExtent(text, extent);
  }
  bool TextOut(int32_t x, int32_t y, std::u16string_view text) override;

  std::unique_ptr<Pen> CreatePenIndirect(const PenData& data) override {
    return std::make_unique<AggPen>(data);
  }
  std::unique_ptr<Brush> CreateBrushIndirect(const BrushData& data) override {
    return std::make_unique<AggBrush>(data);
  }
  Pen* SelectPen(Pen* pen) override { return std::exchange(pen_, pen); }
  Brush* SelectBrush(Brush* brush) override { return std::exchange(brush_, brush); }
  const Pen* CurrentPen() const override { return pen_ ? pen_ : &stock_pen_; }
  const Brush* CurrentBrush() const override { return brush_ ? brush_ : &stock_brush_; }
  uint32_t SetTextColor(uint32_t color) override { return std::exchange(text_color_, color); }
  FillMode SetFillMode(FillMode mode) override { return std::exchange(fill_mode_, mode); }
  int32_t SetLogicalUnits(int32_t per_pixel) override {
    return std::exchange(units_, std::max(1, per_pixel));
  }

  bool PolyPolygon(std::span<const IntPoint> points, std::span<const int32_t> counts) override;
  bool DrawPolygons(std::span<const DevicePoint> points, std::span<const uint32_t> counts) override;
  bool DrawPolyline(std::span<const DevicePoint> points) override;
  bool DrawCircle(DevicePoint centre, double radius) override;
  bool DrawArc(DevicePoint centre, double radius, double start, double sweep) override;

 private:
  DeviceContext& Fonts() {
    if (!fonts_) fonts_ = CreateMeasuringContext();
    return *fonts_;
  }
  bool HasPen() const { return CurrentPen()->Data().style != PenStyle::kNull; }
  bool HasBrush() const { return CurrentBrush()->Data().style != BrushStyle::kHollow; }
  void AddStroke(std::span<const DevicePoint> points, bool closed);
  template <class Source>
  void AddSolidStroke(Source& source);
  void AddGlyph(std::span<const uint8_t> outline, double x, double y);
  void FillWithBrush();
  void StrokeWithPen();
  void RenderSolid(uint32_t color);

  agg::rendering_buffer buffer_;
  PixelFormat format_;
  BaseRenderer renderer_;
  Rasterizer rasterizer_;
  ThinStroke<Rasterizer> thin_;
  agg::scanline_u8 scanline_;
  agg::span_allocator<agg::rgba8> spans_;
  std::unique_ptr<DeviceContext> fonts_;  // made when first asked
  AggPen stock_pen_{PenData{}};
  AggBrush stock_brush_{BrushData{}};
  Pen* pen_ = nullptr;
  Brush* brush_ = nullptr;
  uint32_t text_color_ = 0;
  FillMode fill_mode_ = FillMode::kAlternate;
  int32_t units_ = 1;
};

void SurfaceContext::RenderSolid(uint32_t color) {
  agg::render_scanlines_aa_solid(rasterizer_, scanline_, renderer_, ColorOf(color));
  rasterizer_.reset();
}

// Fills what the rasteriser holds.
void SurfaceContext::FillWithBrush() {
  rasterizer_.filling_rule(fill_mode_ == FillMode::kWinding ? agg::fill_non_zero
                                                            : agg::fill_even_odd);
  const BrushData& brush = CurrentBrush()->Data();
  if (brush.style == BrushStyle::kHatched && brush.hatch >= 0 && brush.hatch <= 5) {
    HatchSpans hatch(ColorOf(brush.color), brush.hatch);
    agg::render_scanlines_aa(rasterizer_, scanline_, renderer_, spans_, hatch);
    rasterizer_.reset();
  } else {
    RenderSolid(brush.color);
  }
}

void SurfaceContext::StrokeWithPen() {
  rasterizer_.filling_rule(agg::fill_non_zero);
  RenderSolid(CurrentPen()->Data().color);
}

// Wide lines have round ends and joins, as the system's geometric pens; on a hairline neither
// shows.
template <class Source>
void SurfaceContext::AddSolidStroke(Source& source) {
  agg::conv_stroke<Source> stroke(source);
  const double width = CurrentPen()->Data().width;
  const bool wide = width > 1;
  stroke.width(width > 0 ? width : 1.0);
  stroke.line_cap(wide ? agg::round_cap : agg::butt_cap);
  stroke.line_join(wide ? agg::round_join : agg::miter_join_revert);
  rasterizer_.add_path(stroke);
}

void SurfaceContext::AddStroke(std::span<const DevicePoint> points, bool closed) {
  PointSource source(points, closed);
  const std::vector<double> dashes = DashLengths(CurrentPen()->Data());
  double pattern = 0;
  for (double length : dashes) pattern += length;
  if (dashes.empty() || pattern < kMinPattern || !(LengthOf(points) / pattern < kMaxDashes)) {
    const double width = CurrentPen()->Data().width;
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

bool SurfaceContext::DrawPolygons(std::span<const DevicePoint> points,
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

bool SurfaceContext::PolyPolygon(std::span<const IntPoint> points,
                                 std::span<const int32_t> counts) {
  const double scale = 1.0 / units_;
  std::vector<DevicePoint> device;
  device.reserve(points.size());
  for (const IntPoint& p : points) device.push_back({p.x * scale, p.y * scale});
  std::vector<uint32_t> lengths;
  lengths.reserve(counts.size());
  for (int32_t count : counts) {
    if (count < 0) return false;
    lengths.push_back(static_cast<uint32_t>(count));
  }
  return DrawPolygons(device, lengths);
}

bool SurfaceContext::DrawPolyline(std::span<const DevicePoint> points) {
  if (points.size() < 2 || !HasPen()) return true;
  const bool closed = points.size() > 2 && SamePlace(points.front(), points.back());
  AddStroke(points, closed);
  StrokeWithPen();
  return true;
}

bool SurfaceContext::DrawCircle(DevicePoint centre, double radius) {
  const std::vector<DevicePoint> points = ArcPoints(centre, radius, 0, 360);
  const uint32_t count = static_cast<uint32_t>(points.size());
  return DrawPolygons(points, std::span(&count, 1));
}

bool SurfaceContext::DrawArc(DevicePoint centre, double radius, double start, double sweep) {
  return DrawPolyline(ArcPoints(centre, radius, start, sweep));
}

// Adds a native outline (polygon headers of type 24 and their curve records) with its pen position
// at (x, y), y turned down.
void SurfaceContext::AddGlyph(std::span<const uint8_t> outline, double x, double y) {
  constexpr size_t kHeaderSize = 16;
  constexpr size_t kRecordSize = 4;
  constexpr size_t kPointSize = 8;
  constexpr uint16_t kSpline = 2;
  const double scale = kFixedToPixels / units_;
  const auto read_point = [&](size_t at) {
    int32_t xy[2];
    std::memcpy(xy, outline.data() + at, sizeof xy);
    return DevicePoint{x + xy[0] * scale, y - xy[1] * scale};
  };

  agg::path_storage path;
  size_t polygon = 0;
  while (polygon + kHeaderSize <= outline.size()) {
    uint32_t size;
    std::memcpy(&size, outline.data() + polygon, sizeof size);
    if (size < kHeaderSize || size > outline.size() - polygon) break;
    const size_t end = polygon + size;
    const DevicePoint start = read_point(polygon + 8);
    path.move_to(start.x, start.y);
    size_t at = polygon + kHeaderSize;
    while (at + kRecordSize <= end) {
      uint16_t record[2];  // kind and number of points
      std::memcpy(record, outline.data() + at, sizeof record);
      at += kRecordSize;
      if (at + record[1] * kPointSize > end) break;
      for (uint16_t i = 0; i < record[1]; ++i) {
        const DevicePoint p = read_point(at + i * kPointSize);
        if (record[0] != kSpline) {
          path.line_to(p.x, p.y);
        } else if (i + 1 < record[1]) {
          DevicePoint to = read_point(at + (i + 1u) * kPointSize);
          const bool last = i + 2 == record[1];
          if (!last) to = {(p.x + to.x) / 2, (p.y + to.y) / 2};
          path.curve3(p.x, p.y, to.x, to.y);
        }
      }
      at += record[1] * kPointSize;
    }
    path.close_polygon();
    polygon = end;
  }
  agg::conv_curve<agg::path_storage> curves(path);
  rasterizer_.add_path(curves);
}

bool SurfaceContext::TextOut(int32_t x, int32_t y, std::u16string_view text) {
  TextMetrics metrics;
  if (!GetTextMetrics(&metrics)) return false;
  double pen = x;
  const double baseline = static_cast<double>(y) + metrics.tmAscent;
  std::vector<uint8_t> outline;
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
      AddGlyph(outline, pen / units_, baseline / units_);
    }
    pen += glyph.gmCellIncX;
  }
  rasterizer_.filling_rule(agg::fill_non_zero);
  RenderSolid(text_color_);
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
  SurfaceContext context_;
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
