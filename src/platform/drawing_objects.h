// Pens and brushes that are nothing but their data, and what a context that draws by itself keeps
// of its selections.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>

#include "platform/drawing.h"

namespace kerno {

// `Object` is Pen or Brush.
template <class Object, class ObjectData>
class DataObject : public Object {
 public:
  explicit DataObject(const ObjectData& data) : data_(data) {}
  const ObjectData& Data() const override { return data_; }

 private:
  ObjectData data_;
};

using DataPen = DataObject<Pen, PenData>;
using DataBrush = DataObject<Brush, BrushData>;

class ObjectContext : public DrawingContext {
 public:
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
    return std::exchange(units_, std::max(1, per_pixel));
  }

 protected:
  bool HasPen() const { return CurrentPen()->Data().style != PenStyle::kNull; }
  bool HasBrush() const { return CurrentBrush()->Data().style != BrushStyle::kHollow; }
  uint32_t text_color() const { return text_color_; }
  FillMode fill_mode() const { return fill_mode_; }
  int32_t units() const { return units_; }  // logical ones in a pixel

 private:
  DataPen stock_pen_{PenData{}};
  DataBrush stock_brush_{BrushData{}};
  Pen* pen_ = nullptr;
  Brush* brush_ = nullptr;
  uint32_t text_color_ = 0;
  FillMode fill_mode_ = FillMode::kAlternate;
  int32_t units_ = 1;
};

}  // namespace kerno
