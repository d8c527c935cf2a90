// The distance between two points of a drawing, in its unit, y up.
#pragma once

#include <string>

#include "drawing/drawing.h"

namespace kerno {

struct Distance {
  P2 from, to;
  bool ended = false;  // both points stand

  P2 Across() const { return to - from; }
  double Length() const { return kerno::Length(to - from); }
};

// "12.345 mm (x 10.000, y 7.234)": three decimals of a millimetre, four of an inch.
std::u16string DistanceText(const Distance& distance, LengthUnit unit);
// "10.000, 7.234 mm".
std::u16string PointText(const P2& point, LengthUnit unit);

// The end of a segment that is nearest to `at` and no farther than `reach`; `at` where there is
// none.
P2 NearestNode(const Drawing& drawing, const P2& at, double reach);

}  // namespace kerno
