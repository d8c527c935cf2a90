// What every drawing surface does alike: it takes its fonts from a measuring context, and turns
// circles and text into polygons and paths.
#pragma once

#include <cmath>
#include <cstddef>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "platform/drawing_objects.h"

namespace kerno {

class SurfaceContext : public ObjectContext {
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

 private:
  DeviceContext& Fonts() {
    if (!fonts_) fonts_ = CreateMeasuringContext();
    return *fonts_;
  }
  void AddGlyph(std::span<const uint8_t> outline, DevicePoint pen);

  std::unique_ptr<DeviceContext> fonts_;  // made when first asked
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
