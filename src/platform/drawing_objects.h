// Pens and brushes that are nothing but their data, for contexts that draw by themselves.
#pragma once

#include "platform/drawing.h"

namespace kerno {

class DataPen final : public Pen {
 public:
  explicit DataPen(const PenData& data) : data_(data) {}
  const PenData& Data() const override { return data_; }

 private:
  PenData data_;
};

class DataBrush final : public Brush {
 public:
  explicit DataBrush(const BrushData& data) : data_(data) {}
  const BrushData& Data() const override { return data_; }

 private:
  BrushData data_;
};

}  // namespace kerno
