#include "platform/drawing.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kerno {

std::vector<double> DashLengths(const PenData& pen) {
  std::vector<double> lengths;
  switch (pen.style) {
    case PenStyle::kDash:
      lengths = {18, 6};
      break;
    case PenStyle::kDot:
      lengths = {3, 3};
      break;
    case PenStyle::kDashDot:
      lengths = {9, 6, 3, 6};
      break;
    case PenStyle::kDashDotDot:
      lengths = {9, 3, 3, 3, 3, 3};
      break;
    case PenStyle::kSolid:
    case PenStyle::kNull:
      return lengths;
  }
  double sum = 0;
  for (double length : lengths) sum += length;
  const bool own = std::isfinite(pen.pattern_length) && pen.pattern_length > 0;
  const double factor = own ? pen.pattern_length / sum : std::max(1.0, pen.width);
  for (double& length : lengths) length *= factor;
  return lengths;
}

std::vector<DevicePoint> ArcPoints(DevicePoint centre, double radius, double start, double sweep) {
  constexpr double kTolerance = 1.0 / 16;
  constexpr double kMaxSteps = 4096;
  std::vector<DevicePoint> points;
  if (!std::isfinite(radius) || !std::isfinite(start) || !std::isfinite(sweep)) return points;
  radius = std::fabs(radius);
  sweep = std::clamp(sweep, -360.0, 360.0);
  // The sagitta of a chord over the angle s is r (1 - cos(s / 2)).
  const double step = radius > kTolerance ? 2 * std::acos(1 - kTolerance / radius) : 2.0;
  const double span = sweep * std::numbers::pi / 180;
  const int steps = static_cast<int>(std::clamp(std::ceil(std::fabs(span) / step), 4.0, kMaxSteps));
  points.reserve(static_cast<size_t>(steps) + 1);
  for (int i = 0; i <= steps; ++i) {
    const double a = start * std::numbers::pi / 180 + span * i / steps;
    points.push_back({centre.x + radius * std::cos(a), centre.y - radius * std::sin(a)});
  }
  if (std::fabs(sweep) == 360.0) points.back() = points.front();
  return points;
}

}  // namespace kerno
