// Lines on their way to a drawing context, cut to the detail that the picture needs.
#pragma once

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

#include "platform/drawing.h"

namespace kerno {

// Points on their way to the context: cut to the wanted detail, kept until drawn.
class PointRun {
 public:
  explicit PointRun(double detail) : detail_(detail) {}

  // Begins a line; the ones before stay.
  void Begin() { begin_ = points_.size(); }

  void Add(const DevicePoint& p) {
    last_ = p;
    dropped_ = false;
    if (points_.size() > begin_ && detail_ > 0) {
      const DevicePoint& kept = points_.back();
      dropped_ = std::fabs(p.x - kept.x) < detail_ && std::fabs(p.y - kept.y) < detail_;
      if (dropped_) return;
    }
    points_.push_back(p);
  }

  // Ends a line at its last point, whether that was dropped or not. What shrank to one spot stays
  // visible as a dash of the detail's length.
  size_t End() {
    if (dropped_) {
      if (points_.size() == begin_ + 1) {
        points_.push_back({points_.back().x + detail_, points_.back().y});
      } else {
        points_.back() = last_;
      }
    }
    dropped_ = false;
    return points_.size() - begin_;
  }

  // Puts the box of a figure without an area in the line's place: a filled line shows nothing. No
  // side is shorter than the detail.
  size_t EndAsBox(const DevicePoint& min, const DevicePoint& max) {
    DropLine();
    const double right = std::max(max.x, min.x + detail_);
    const double bottom = std::max(max.y, min.y + detail_);
    points_.insert(points_.end(), {min, {right, min.y}, {right, bottom}, {min.x, bottom}});
    return 4;
  }

  void Clear() {
    points_.clear();
    begin_ = 0;
  }
  void DropLine() { points_.resize(begin_); }
  std::span<const DevicePoint> points() const { return points_; }

 private:
  double detail_;
  std::vector<DevicePoint> points_;
  size_t begin_ = 0;
  DevicePoint last_;
  bool dropped_ = false;
};

}  // namespace kerno
