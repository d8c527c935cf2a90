#include "drawing/affine.h"

#include <cmath>

namespace kerno {
namespace {

struct SineCosine {
  double sine, cosine;
};

SineCosine Of(double degrees) {
  constexpr double kRadians = 0.017453292519943295;
  const double quarters = degrees / 90;
  if (quarters == std::floor(quarters) && std::fabs(quarters) < 1e9) {
    const int quarter = static_cast<int>(std::fmod(std::fmod(quarters, 4) + 4, 4));
    constexpr double kSines[] = {0, 1, 0, -1};
    return {kSines[quarter], kSines[(quarter + 1) % 4]};
  }
  return {std::sin(degrees * kRadians), std::cos(degrees * kRadians)};
}

}  // namespace

Affine Turned(double degrees, const P2& centre) {
  const auto [sine, cosine] = Of(degrees);
  return {cosine, -sine, sine, cosine, centre, centre};
}

Affine Leaned(double degrees, double base) {
  const auto [sine, cosine] = Of(degrees);
  return {1, -sine, 0, cosine, {0, base}, {0, base}};
}

Path Mapped(const Path& path, const Linear& map) {
  Path mapped = path;
  mapped.start = map.Apply(path.start);
  for (Segment& segment : mapped.segments) {
    segment.end = map.Apply(segment.end);
    segment.first = map.Apply(segment.first);
    segment.second = map.Apply(segment.second);
    if (map.TurnsOver()) segment.bulge = -segment.bulge;
  }
  return mapped;
}

Path Moved(const Path& path, const P2& by) {
  const auto moved = [&](const P2& p) { return P2{p.x + by.x, p.y + by.y}; };
  Path result = path;
  result.start = moved(path.start);
  for (Segment& segment : result.segments) {
    segment.end = moved(segment.end);
    segment.first = moved(segment.first);
    segment.second = moved(segment.second);
  }
  return result;
}

}  // namespace kerno
