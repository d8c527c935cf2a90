// A drawing context that writes down what was drawn, and with which pen and brush.
#pragma once

#include <utility>
#include <vector>

#include "platform/drawing.h"
#include "support/fake_device_context.h"

namespace kerno {

class RecordedPen final : public Pen {
 public:
  RecordedPen(const PenData& data, int* alive) : data_(data), alive_(alive) { ++*alive_; }
  ~RecordedPen() override { --*alive_; }
  const PenData& Data() const override { return data_; }

 private:
  PenData data_;
  int* alive_;
};

class RecordedBrush final : public Brush {
 public:
  RecordedBrush(const BrushData& data, int* alive) : data_(data), alive_(alive) { ++*alive_; }
  ~RecordedBrush() override { --*alive_; }
  const BrushData& Data() const override { return data_; }

 private:
  BrushData data_;
  int* alive_;
};

class RecordingDrawingContext final : public FakeContext<DrawingContext> {
 public:
  enum class Kind { kWholePolygons, kPolygons, kPolyline, kCircle, kArc };
  struct Call {
    Kind kind;
    PenData pen;
    BrushData brush;
    FillMode mode;
    int32_t units;
    std::vector<DevicePoint> points;  // of a circle or an arc: the centre
    std::vector<uint32_t> counts;
    double radius = 0, start = 0, sweep = 0;
  };

  std::unique_ptr<Pen> CreatePenIndirect(const PenData& data) override {
    return std::make_unique<RecordedPen>(data, &objects_alive);
  }
  std::unique_ptr<Brush> CreateBrushIndirect(const BrushData& data) override {
    return std::make_unique<RecordedBrush>(data, &objects_alive);
  }
  Pen* SelectPen(Pen* pen) override { return std::exchange(pen_, pen); }
  Brush* SelectBrush(Brush* brush) override { return std::exchange(brush_, brush); }
  const Pen* CurrentPen() const override { return pen_ ? pen_ : &stock_pen_; }
  const Brush* CurrentBrush() const override { return brush_ ? brush_ : &stock_brush_; }
  uint32_t SetTextColor(uint32_t color) override { return std::exchange(text_color, color); }
  FillMode SetFillMode(FillMode mode) override { return std::exchange(fill_mode, mode); }
  int32_t SetLogicalUnits(int32_t per_pixel) override { return std::exchange(units, per_pixel); }

  bool PolyPolygon(std::span<const IntPoint> points, std::span<const int32_t> counts) override {
    Call& call = Record(Kind::kWholePolygons);
    for (const IntPoint& p : points) {
      call.points.push_back({static_cast<double>(p.x), static_cast<double>(p.y)});
    }
    for (int32_t count : counts) call.counts.push_back(static_cast<uint32_t>(count));
    return true;
  }
  bool DrawPolygons(std::span<const DevicePoint> points,
                    std::span<const uint32_t> counts) override {
    Call& call = Record(Kind::kPolygons);
    call.points.assign(points.begin(), points.end());
    call.counts.assign(counts.begin(), counts.end());
    return true;
  }
  bool DrawPolyline(std::span<const DevicePoint> points) override {
    Record(Kind::kPolyline).points.assign(points.begin(), points.end());
    return true;
  }
  bool DrawCircle(DevicePoint centre, double radius) override {
    Call& call = Record(Kind::kCircle);
    call.points = {centre};
    call.radius = radius;
    return true;
  }
  bool DrawArc(DevicePoint centre, double radius, double start, double sweep) override {
    Call& call = Record(Kind::kArc);
    call.points = {centre};
    call.radius = radius;
    call.start = start;
    call.sweep = sweep;
    return true;
  }

  std::vector<Call> calls;
  uint32_t text_color = 0;
  FillMode fill_mode = FillMode::kAlternate;
  int32_t units = 1;
  int objects_alive = 0;  // pens and brushes not destroyed yet

 private:
  Call& Record(Kind kind) {
    calls.push_back({kind, CurrentPen()->Data(), CurrentBrush()->Data(), fill_mode, units, {}, {}});
    return calls.back();
  }

  int stock_count_ = 0;
  RecordedPen stock_pen_{PenData{}, &stock_count_};
  RecordedBrush stock_brush_{BrushData{}, &stock_count_};
  Pen* pen_ = nullptr;
  Brush* brush_ = nullptr;
};

}  // namespace kerno
