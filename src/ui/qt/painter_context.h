// A drawing context that paints with a QPainter.
#pragma once

#include <QPainter>
#include <QPainterPath>
#include <memory>

#include "platform/drawing.h"

namespace kerno {

// Pixels are the painter's logical units, so that drawings are sharp at every density. Fonts are
// measured and outlined by a measuring context.
class PainterContext final : public DrawingContext {
 public:
  // Both outlive the context.
  PainterContext(QPainter& painter, DeviceContext& fonts);

  std::unique_ptr<Font> CreateFontIndirect(const LogFont& wanted) override;
  Font* SelectFont(Font* font) override { return fonts_.SelectFont(font); }
  Font* SelectedFont() const override { return fonts_.SelectedFont(); }
  bool GetTextMetrics(TextMetrics* metrics) override { return fonts_.GetTextMetrics(metrics); }
  uint32_t GetGlyphOutline(char32_t ch, uint32_t format, GlyphMetrics* metrics, uint32_t size,
                           void* buffer, const Mat2& matrix) override {
    return fonts_.GetGlyphOutline(ch, format, metrics, size, buffer, matrix);
  }
  bool GetTextExtent(std::u16string_view text, Extent* extent) override {
    return fonts_.GetTextExtent(text, extent);
  }
  bool TextOut(int32_t x, int32_t y, std::u16string_view text) override;

  std::unique_ptr<Pen> CreatePenIndirect(const PenData& data) override;
  std::unique_ptr<Brush> CreateBrushIndirect(const BrushData& data) override;
  Pen* SelectPen(Pen* pen) override;
  Brush* SelectBrush(Brush* brush) override;
  const Pen* CurrentPen() const override;
  const Brush* CurrentBrush() const override;
  uint32_t SetTextColor(uint32_t color) override;
  FillMode SetFillMode(FillMode mode) override;
  int32_t SetLogicalUnits(int32_t per_pixel) override;

  bool PolyPolygon(std::span<const IntPoint> points, std::span<const int32_t> counts) override;
  bool DrawPolygons(std::span<const DevicePoint> points, std::span<const uint32_t> counts) override;
  bool DrawPolyline(std::span<const DevicePoint> points) override;
  bool DrawCircle(DevicePoint centre, double radius) override;
  bool DrawArc(DevicePoint centre, double radius, double start, double sweep) override;

 private:
  // The figure filled by the brush, then outlined by the pen.
  void Paint(const QPainterPath& path);

  QPainter& painter_;
  DeviceContext& fonts_;
  std::unique_ptr<Pen> stock_pen_;
  std::unique_ptr<Brush> stock_brush_;
  Pen* pen_ = nullptr;  // null: the stock one
  Brush* brush_ = nullptr;
  uint32_t text_color_ = 0;
  FillMode fill_mode_ = FillMode::kAlternate;
  int32_t units_per_pixel_ = 1;
};

}  // namespace kerno
