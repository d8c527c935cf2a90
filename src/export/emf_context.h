// A drawing context whose drawing becomes the records of an enhanced metafile.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "export/emf_encoder.h"
#include "platform/drawing.h"

namespace kerno {

// Fonts are those of a measuring context. Objects reach the file when something is drawn with them.
class EmfContext final : public DrawingContext {
 public:
  // `out` outlives the context.
  EmfContext(const EmfFrame& frame, std::u16string_view picture, FileReplacement* out);
  ~EmfContext() override;

  // Ends the file; nothing can be drawn afterwards.
  [[nodiscard]] Status Finish() { return encoder_.Finish(); }

  std::unique_ptr<Font> CreateFontIndirect(const LogFont& wanted) override;
  Font* SelectFont(Font* font) override;
  Font* SelectedFont() const override;
  bool GetTextMetrics(TextMetrics* metrics) override { return fonts_->GetTextMetrics(metrics); }
  uint32_t GetGlyphOutline(char32_t ch, uint32_t format, GlyphMetrics* metrics, uint32_t size,
                           void* buffer, const Mat2& matrix) override {
    return fonts_->GetGlyphOutline(ch, format, metrics, size, buffer, matrix);
  }
  bool GetTextExtent(std::u16string_view text, Extent* extent) override {
    return fonts_->GetTextExtent(text, extent);
  }
  bool TextOut(int32_t x, int32_t y, std::u16string_view text) override;

  std::unique_ptr<Pen> CreatePenIndirect(const PenData& data) override;
  std::unique_ptr<Brush> CreateBrushIndirect(const BrushData& data) override;
  Pen* SelectPen(Pen* pen) override { return std::exchange(pen_, pen); }
  Brush* SelectBrush(Brush* brush) override { return std::exchange(brush_, brush); }
  const Pen* CurrentPen() const override;
  const Brush* CurrentBrush() const override;
  uint32_t SetTextColor(uint32_t color) override { return std::exchange(text_color_, color); }
  FillMode SetFillMode(FillMode mode) override { return std::exchange(fill_mode_, mode); }
  int32_t SetLogicalUnits(int32_t per_pixel) override;

  bool PolyPolygon(std::span<const IntPoint> points, std::span<const int32_t> counts) override;
  bool DrawPolygons(std::span<const DevicePoint> points, std::span<const uint32_t> counts) override;
  bool DrawPolyline(std::span<const DevicePoint> points) override;
  bool DrawCircle(DevicePoint centre, double radius) override;
  bool DrawArc(DevicePoint centre, double radius, double start, double sweep) override;

 private:
  // The objects of one kind in the file, by what they are. The oldest makes room for a new one.
  template <class Data>
  struct Handles {
    uint32_t first = 1;  // handles first to first + kKept - 1
    size_t next = 0;
    std::vector<Data> known;
    uint32_t selected = 0;  // 0: none of this kind yet
  };
  static constexpr size_t kKept = 256;

  template <class Data, class Create>
  void Use(Handles<Data>* handles, const Data& data, Create create);
  void SelectStock(uint32_t* selected, uint32_t stock);
  void UsePen();
  void UseBrush(bool hollow);
  void UseFont();
  void UseState();
  IntPoint FilePoint(double x, double y) const;

  EmfFrame frame_;
  EmfEncoder encoder_;
  std::unique_ptr<DeviceContext> fonts_;
  Handles<PenData> pens_;
  Handles<PenData> plain_pens_;
  Handles<BrushData> brushes_;
  Handles<LogFont> file_fonts_;
  Pen* pen_ = nullptr;
  Brush* brush_ = nullptr;
  Font* font_ = nullptr;
  uint32_t text_color_ = 0;
  uint32_t file_text_color_ = 0;
  FillMode fill_mode_ = FillMode::kAlternate;
  FillMode file_fill_mode_ = FillMode::kAlternate;
  int32_t units_ = 1;
};

}  // namespace kerno
