// The outline of thin lines, made by hand.
#pragma once

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

#include "platform/drawing.h"

namespace kerno {

// Outlines a line that is too thin to show its joins, which is quicker than the general converter:
// mitred where the line bends, cut off where it turns sharply, with butt ends.
template <class Rasterizer>
class ThinStroke {
 public:
  explicit ThinStroke(Rasterizer& rasterizer) : rasterizer_(rasterizer) {}

  void Add(std::span<const DevicePoint> points, bool closed, double width) {
    constexpr double kThinnest =
        1e-100;  // its square is a number yet; no pixel shows the difference
    half_ = std::max(width / 2, kThinnest);
    Collect(points, closed);
    const size_t n = points_.size();
    if (n < 2) return;
    left_.clear();
    right_.clear();
    for (size_t i = 0; i < n; ++i) {
      const size_t before = i > 0 ? i - 1 : closed ? n - 1 : 0;
      const size_t after = i < normals_.size() ? i : n - 2;
      Corner(points_[i], normals_[before], normals_[after]);
    }
    // One ring there and back for an open line, two rings for a closed one.
    Trace(left_.begin(), left_.end(), true);
    if (closed) rasterizer_.Close();
    Trace(right_.rbegin(), right_.rend(), closed);
    rasterizer_.Close();
  }

 private:
  // The points without repetitions, and of each segment the unit normal times half the width.
  void Collect(std::span<const DevicePoint> points, bool closed) {
    points_.clear();
    normals_.clear();
    for (const DevicePoint& p : points) {
      if (!std::isfinite(p.x) || !std::isfinite(p.y)) continue;
      const DevicePoint q = {std::clamp(p.x, -kMaxDevice, kMaxDevice),
                             std::clamp(p.y, -kMaxDevice, kMaxDevice)};
      if (points_.empty() || AddNormal(points_.back(), q)) points_.push_back(q);
    }
    if (!closed || points_.size() < 2) return;
    if (!AddNormal(points_.back(), points_.front())) points_.pop_back();
  }
  bool AddNormal(const DevicePoint& a, const DevicePoint& b) {
    constexpr double kSame = 1e-6;
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double length = std::sqrt(dx * dx + dy * dy);
    if (length < kSame) return false;
    normals_.push_back({dy / length * half_, -dx / length * half_});
    return true;
  }
  void Corner(const DevicePoint& p, const DevicePoint& in, const DevicePoint& out) {
    constexpr double kSharp = 0.5;
    const double turn = 1 + (in.x * out.x + in.y * out.y) / (half_ * half_);  // 1 + its cosine
    if (turn < kSharp) {
      Offset(p, in);
      Offset(p, out);
    } else {
      Offset(p, {(in.x + out.x) / turn, (in.y + out.y) / turn});
    }
  }
  void Offset(const DevicePoint& p, const DevicePoint& by) {
    left_.push_back({p.x + by.x, p.y + by.y});
    right_.push_back({p.x - by.x, p.y - by.y});
  }
  template <class Iterator>
  void Trace(Iterator from, Iterator to, bool begin) {
    for (; from != to; ++from, begin = false) {
      if (begin) {
        rasterizer_.MoveTo(*from);
      } else {
        rasterizer_.LineTo(*from);
      }
    }
  }

  Rasterizer& rasterizer_;
  double half_ = 0.5;
  std::vector<DevicePoint> points_, normals_, left_, right_;
};

}  // namespace kerno
