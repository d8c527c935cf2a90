// What every drawing surface does alike: it keeps the selected objects, colours and units, takes
// its fonts from a measuring context, and turns circles and text into polygons and paths.
#pragma once

#include <cmath>
#include <cstddef>
#include <memory>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/drawing.h"
#include "platform/drawing_objects.h"

namespace kerno {

class SurfaceContext : public DrawingContext {
 public:
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
    return std::make_unique<DataPen>(data);
  }
  std::unique_ptr<Brush> CreateBrushIndirect(const BrushData& data) override {
    return std::make_unique<DataBrush>(data);
  }
  Pen* SelectPen(Pen* pen) override { return std::exchange(pen_, pen); }
  Brush* SelectBrush(Brush* brush) override { return std::exchange(brush_, brush); }
  const Pen* CurrentPen() const override { return pen_ ? pen_ : &stock_pen_; }
  const Brush* CurrentBrush() const override { return brush_ ? brush_ : &stock_brush_; }
  uint32_t SetTextColor(uint32_t color) override { return std::exchange(text_color_, color); }
  FillMode SetFillMode(FillMode mode) override { return std::exchange(fill_mode_, mode); }
  int32_t SetLogicalUnits(int32_t per_pixel) override {
    return std::exchange(units_, per_pixel < 1 ? 1 : per_pixel);
  }

  bool PolyPolygon(std::span<const IntPoint> points, std::span<const int32_t> counts) override;
  bool DrawCircle(DevicePoint centre, double radius) override;
  bool DrawArc(DevicePoint centre, double radius, double start, double sweep) override;

 protected:
  // A path of closed figures in pixels, which FillPath fills by the winding rule.
  virtual void BeginPath() = 0;
  virtual void MoveTo(DevicePoint to) = 0;
  virtual void LineTo(DevicePoint to) = 0;
  virtual void CurveTo(DevicePoint from, DevicePoint control, DevicePoint to) = 0;  // quadratic
  virtual void CloseFigure() = 0;
  virtual bool FillPath(uint32_t color) = 0;

  bool HasPen() const { return CurrentPen()->Data().style != PenStyle::kNull; }
  bool HasBrush() const { return CurrentBrush()->Data().style != BrushStyle::kHollow; }
  FillMode fill_mode() const { return fill_mode_; }

 private:
  DeviceContext& Fonts() {
    if (!fonts_) fonts_ = CreateMeasuringContext();
    return *fonts_;
  }
  void AddGlyph(std::span<const uint8_t> outline, DevicePoint pen);

  std::unique_ptr<DeviceContext> fonts_;  // made when first asked
  DataPen stock_pen_{PenData{}};
  DataBrush stock_brush_{BrushData{}};
  Pen* pen_ = nullptr;
  Brush* brush_ = nullptr;
  uint32_t text_color_ = 0;
  FillMode fill_mode_ = FillMode::kAlternate;
  int32_t units_ = 1;
};

inline constexpr double kMaxDashes = 65536;  // of one line; a line of more is drawn solid
inline constexpr double kMinPattern = 0.25;  // pixels; a finer dash pattern is drawn solid

// The length of a line through points, in their unit.
template <class Point>
double LengthOf(std::span<const Point> points) {
  double length = 0;
  for (size_t i = 1; i < points.size(); ++i) {
    length += std::hypot(points[i].x - points[i - 1].x, points[i].y - points[i - 1].y);
  }
  return length;
}

// The dashes and gaps of a line of `length` pixels; empty where it is drawn solid.
std::vector<double> DashesOf(const PenData& pen, double length);

// Whether a brush fills with a pattern of lines that repeats every kHatchSide pixels, and which of
// its pixels have ink.
inline constexpr int kHatchSide = 8;
bool IsPattern(const BrushData& brush);
bool HasInk(int32_t hatch, int x, int y);

}  // namespace kerno
