// Drawing through the graphics device interface.
//
// The interface draws in whole pixels: the context works on a device context that is `scale` times
// finer than the surface that it stands for, so that edges come out smooth when the surface is
// made of it.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "platform/drawing.h"
#include "platform/win32/windows_api.h"

namespace kerno {

class GdiPen final : public Pen {
 public:
  explicit GdiPen(const PenData& data) : data_(data) {}
  const PenData& Data() const override { return data_; }

 private:
  PenData data_;
};

class GdiBrush final : public Brush {
 public:
  explicit GdiBrush(const BrushData& data) : data_(data) {}
  const BrushData& Data() const override { return data_; }

 private:
  BrushData data_;
};

class GdiDrawingContext final : public DrawingContext {
 public:
  // Draws on `dc`, which outlives it; `width` and `height` in pixels of the surface.
  GdiDrawingContext(HDC dc, int scale, int width, int height);
  ~GdiDrawingContext() override;
  GdiDrawingContext(const GdiDrawingContext&) = delete;
  GdiDrawingContext& operator=(const GdiDrawingContext&) = delete;

  // Fonts are those of a measuring context.
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
    return std::make_unique<GdiPen>(data);
  }
  std::unique_ptr<Brush> CreateBrushIndirect(const BrushData& data) override {
    return std::make_unique<GdiBrush>(data);
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
  bool DrawPolygons(std::span<const DevicePoint> points, std::span<const uint32_t> counts) override;
  bool DrawPolyline(std::span<const DevicePoint> points) override;
  bool DrawCircle(DevicePoint centre, double radius) override;
  bool DrawArc(DevicePoint centre, double radius, double start, double sweep) override;

 private:
  DeviceContext& Fonts() {
    if (!fonts_) fonts_ = CreateMeasuringContext();
    return *fonts_;
  }
  POINT ToFine(DevicePoint point) const;
  bool FillPolygons(const std::vector<POINT>& points, const std::vector<INT>& counts);
  bool OutlinePolygons(const std::vector<POINT>& points, const std::vector<INT>& counts);
  void DrawHatch(int32_t hatch, uint32_t color);
  void AddGlyphPath(const std::vector<uint8_t>& outline, double x, double y);

  HDC dc_;
  int scale_;
  int width_;
  int height_;
  std::unique_ptr<DeviceContext> fonts_;  // made when first asked
  GdiPen stock_pen_{PenData{}};
  GdiBrush stock_brush_{BrushData{}};
  Pen* pen_ = nullptr;
  Brush* brush_ = nullptr;
  uint32_t text_color_ = 0;
  FillMode fill_mode_ = FillMode::kAlternate;
  int32_t units_ = 1;
};

}  // namespace kerno
