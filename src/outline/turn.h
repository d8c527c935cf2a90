// Turning points in the plane.
#pragma once

#include "parts/geometry.h"

namespace kerno {

// A turn by an angle in degrees, counter-clockwise where y points up. Sine and cosine of whole
// multiples of 90 degrees are exact.
class Turn {
 public:
  explicit Turn(double degrees);

  P2 Apply(const P2& p, const P2& centre) const {
    const P2 d = {p.x - centre.x, p.y - centre.y};
    return {centre.x + d.x * cos_ - d.y * sin_, centre.y + d.y * cos_ + d.x * sin_};
  }

 private:
  double sin_;
  double cos_;
};

}  // namespace kerno
