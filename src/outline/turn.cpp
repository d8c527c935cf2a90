#include "outline/turn.h"

#include <cmath>

namespace kerno {

Turn::Turn(double degrees) {
  constexpr double kRadians = 0.017453292519943295;
  const double quarters = degrees / 90;
  if (quarters == std::floor(quarters) && std::fabs(quarters) < 1e9) {
    const int quarter = static_cast<int>(std::fmod(std::fmod(quarters, 4) + 4, 4));
    constexpr double kSines[] = {0, 1, 0, -1};
    sin_ = kSines[quarter];
    cos_ = kSines[(quarter + 1) % 4];
    return;
  }
  sin_ = std::sin(degrees * kRadians);
  cos_ = std::cos(degrees * kRadians);
}

}  // namespace kerno
