#include "export/fit.h"

#include <algorithm>
#include <limits>

namespace kerno {

Extent3 MeasurableBox(Extent3 box) {
  constexpr double kMost = std::numeric_limits<double>::max() / 2;
  for (double P3::*axis : {&P3::x, &P3::y}) {
    box.min.*axis = std::clamp(box.min.*axis, -kMost, kMost);
    box.max.*axis = std::clamp(box.max.*axis, -kMost, kMost);
  }
  return box;
}

Affine FitExtent(const Extent3& any_box, const PictureFrame& frame, double margin) {
  const Extent3 box = MeasurableBox(any_box);
  const double room_x = std::max(1.0, frame.width - 2 * margin);
  const double room_y = std::max(1.0, frame.height - 2 * margin);
  const double width = box.max.x - box.min.x;
  const double height = box.max.y - box.min.y;
  constexpr double kAny = std::numeric_limits<double>::max();
  const double by_width = width > 0 ? room_x / width : kAny;
  const double by_height = height > 0 ? room_y / height : kAny;
  const double least = std::min(by_width, by_height);
  const double scale = least < kAny ? least : 1;
  const double centre_x = box.min.x + width / 2;
  const double centre_y = box.min.y + height / 2;
  return FlippedY(scale, {frame.left + frame.width / 2 - centre_x * scale,
                          frame.top + frame.height / 2 + centre_y * scale});
}

}  // namespace kerno
