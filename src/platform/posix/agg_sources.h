// What the rasteriser of the bitmap surface reads: points and hatch colours.
#pragma once

#include <agg_basics.h>
#include <agg_color_rgba.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/surface_context.h"

namespace kerno {

// A polyline as the rasteriser's converters read it: finite points within kMaxDevice.
class PointSource {
 public:
  PointSource(std::span<const DevicePoint> points, bool closed)
      : points_(points), closed_(closed) {}

  void rewind(unsigned) {
    next_ = 0;
    started_ = false;
    ended_ = false;
  }

  unsigned vertex(double* x, double* y) {
    while (next_ < points_.size()) {
      const DevicePoint& p = points_[next_++];
      if (!std::isfinite(p.x) || !std::isfinite(p.y)) continue;
      *x = std::clamp(p.x, -kMaxDevice, kMaxDevice);
      *y = std::clamp(p.y, -kMaxDevice, kMaxDevice);
      const bool first = !started_;
      started_ = true;
      return first ? agg::path_cmd_move_to : agg::path_cmd_line_to;
    }
    *x = *y = 0;  // read by the converters, and passed over
    if (closed_ && started_ && !ended_) {
      ended_ = true;
      return static_cast<unsigned>(agg::path_cmd_end_poly) | agg::path_flags_close;
    }
    return agg::path_cmd_stop;
  }

 private:
  std::span<const DevicePoint> points_;
  bool closed_;
  size_t next_ = 0;
  bool started_ = false;
  bool ended_ = false;
};

// The system's six hatches: a pattern of 8 x 8 pixels anchored at the surface's origin.
class HatchSpans {
 public:
  using color_type = agg::rgba8;
  HatchSpans(agg::rgba8 color, int32_t hatch) : color_(color), hatch_(hatch) {}
  void prepare() {}
  void generate(color_type* span, int x, int y, unsigned length) {
    for (unsigned i = 0; i < length; ++i, ++x) {
      span[i] = HasInk(hatch_, x, y) ? color_ : agg::rgba8(0, 0, 0, 0);
    }
  }

 private:
  agg::rgba8 color_;
  int32_t hatch_;
};

}  // namespace kerno
