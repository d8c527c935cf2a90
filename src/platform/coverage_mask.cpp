#include "platform/coverage_mask.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kerno {
namespace {

// The integral from below up to t of how much of a pixel lies to the right of an edge that crosses
// its row t pixels before the pixel's right side.
double Covered(double t) {
  if (t <= 0) return 0;
  return t < 1 ? t * t / 2 : t - 0.5;
}

}  // namespace

CoverageMask::CoverageMask(int width, int height)
    : width_(width),
      height_(height),
      stride_(static_cast<size_t>(width) + 2),
      changes_(stride_ * static_cast<size_t>(height)),
      rows_(static_cast<size_t>(height), {width, -1}),
      coverages_(static_cast<size_t>(width)),
      first_row_(height) {}

void CoverageMask::MoveTo(const DevicePoint& to) {
  start_ = at_ = to;
}

void CoverageMask::LineTo(const DevicePoint& to) {
  Edge(at_, to);
  at_ = to;
}

// Cuts the edge to the mask. What is left of it counts as lying on its left side, what is right of
// it changes nothing.
void CoverageMask::Edge(DevicePoint from, DevicePoint to) {
  constexpr double kLevel = 1e-9;  // pixels; a lower edge covers nothing that can be seen
  if (std::fabs(from.y - to.y) < kLevel) return;
  float sign = 1;
  if (from.y > to.y) {
    std::swap(from, to);
    sign = -1;
  }
  const double bottom = height_, right = width_;
  if (to.y <= 0 || from.y >= bottom || (from.x >= right && to.x >= right)) return;
  const double slope = (to.x - from.x) / (to.y - from.y);
  if (from.y < 0) from = {from.x - from.y * slope, 0};
  if (to.y > bottom) to = {to.x - (to.y - bottom) * slope, bottom};
  // The parts left of, in and right of the mask, from above.
  const auto cross = [&](double x) {
    return DevicePoint{x, std::clamp(from.y + (x - from.x) / slope, from.y, to.y)};
  };
  const auto take = [&](const DevicePoint& a, const DevicePoint& b) {
    if (std::max(a.x, b.x) <= 0) {
      EdgeInside({0, a.y}, {0, b.y}, sign);
    } else if (std::min(a.x, b.x) < right) {
      EdgeInside(a, b, sign);
    }
  };
  DevicePoint cuts[4] = {from};
  size_t count = 1;
  const bool falls = to.x < from.x;
  for (const double x : {falls ? right : 0.0, falls ? 0.0 : right}) {
    if (std::min(from.x, to.x) < x && x < std::max(from.x, to.x)) cuts[count++] = cross(x);
  }
  cuts[count] = to;
  for (size_t i = 0; i < count; ++i) take(cuts[i], cuts[i + 1]);
}

// An edge of the mask, downwards.
void CoverageMask::EdgeInside(const DevicePoint& from, const DevicePoint& to, float sign) {
  if (!(from.y < to.y)) return;
  const int first = static_cast<int>(from.y);
  const int last = std::min(static_cast<int>(std::ceil(to.y)), height_) - 1;
  first_row_ = std::min(first_row_, first);
  last_row_ = std::max(last_row_, last);
  if (first == last) {
    Piece(first, from.x, to.x, static_cast<float>(to.y - from.y) * sign);
    return;
  }
  const double slope = (to.x - from.x) / (to.y - from.y);
  double x = from.x, y = from.y;
  for (int row = first; row <= last; ++row) {
    const double end_y = std::min<double>(row + 1, to.y);
    const double end_x = row == last ? to.x : from.x + (end_y - from.y) * slope;
    Piece(row, x, end_x, static_cast<float>(end_y - y) * sign);
    x = end_x;
    y = end_y;
  }
}

// The part of an edge within a row: all that is right of it gains `height`.
void CoverageMask::Piece(int y, double from, double to, float height) {
  const double right = width_;
  const double low = std::clamp(std::min(from, to), 0.0, right);
  const double high = std::clamp(std::max(from, to), 0.0, right);
  const int first = static_cast<int>(low), last = static_cast<int>(high);
  Row& row = rows_[static_cast<size_t>(y)];
  row.first = std::min(row.first, first);
  row.last = std::max(row.last, last + 1);
  float* const changes = RowAt(y);
  if (first == last) {
    const float after = height * static_cast<float>((low + high) / 2 - first);
    changes[first] += height - after;
    changes[first + 1] += after;
    return;
  }
  const double scale = 1 / (high - low);
  float before = 0;
  for (int x = first; x <= last; ++x) {
    const double part = (Covered(x + 1 - low) - Covered(x + 1 - high)) * scale;
    const float covered = height * static_cast<float>(part);
    changes[x] += covered - before;
    before = covered;
  }
  changes[last + 1] += height - before;
}

// The coverages of a row from *first on; its changes are forgotten.
std::span<const uint8_t> CoverageMask::SumRow(int y, FillMode mode, int* first) {
  Row& row = rows_[static_cast<size_t>(y)];
  *first = row.first;
  const int last = row.last;
  if (last < 0) return {};
  row = {width_, -1};
  float* const changes = RowAt(y);
  uint8_t* to = coverages_.data();
  float sum = 0;
  const auto coverage = [&] {
    float part = std::fabs(sum);
    if (mode == FillMode::kAlternate && part > 1) {
      part -= 2 * std::floor(part / 2);
      if (part > 1) part = 2 - part;
    }
    return static_cast<uint8_t>(std::min(part, 1.0f) * 255 + 0.5f);
  };
  for (int x = *first; x <= last; ++x) {
    sum += changes[x];
    changes[x] = 0;
    if (x < width_) *to++ = coverage();
  }
  const uint8_t rest = coverage();
  if (rest != 0 && last + 1 < width_) to = std::fill_n(to, width_ - last - 1, rest);
  return {coverages_.data(), to};
}

}  // namespace kerno
