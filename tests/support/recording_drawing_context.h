// A drawing context that writes down what was drawn, and with which pen and brush.
#pragma once

#include <vector>

#include "platform/drawing_objects.h"
#include "support/fake_device_context.h"

namespace kerno {

// A pen or a brush that counts itself among those alive.
template <class Object, class Data>
class RecordedObject final : public DataObject<Object, Data> {
 public:
  RecordedObject(const Data& data, int* alive) : DataObject<Object, Data>(data), alive_(alive) {
    ++*alive_;
  }
  ~RecordedObject() override { --*alive_; }

 private:
  int* alive_;
};

class RecordingDrawingContext final : public FakeContext<ObjectContext> {
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
    return std::make_unique<RecordedObject<Pen, PenData>>(data, &objects_alive);
  }
  std::unique_ptr<Brush> CreateBrushIndirect(const BrushData& data) override {
    return std::make_unique<RecordedObject<Brush, BrushData>>(data, &objects_alive);
  }

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
  using ObjectContext::fill_mode;
  using ObjectContext::units;
  int objects_alive = 0;  // pens and brushes not destroyed yet

 private:
  Call& Record(Kind kind) {
    calls.push_back(
        {kind, CurrentPen()->Data(), CurrentBrush()->Data(), fill_mode(), units(), {}, {}});
    return calls.back();
  }
};

}  // namespace kerno
