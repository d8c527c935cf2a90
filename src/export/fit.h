// From model coordinates (y up) to picture coordinates (pixels, y down).
#pragma once

#include "parts/geometry.h"
#include "platform/drawing.h"

namespace kerno {

// Coordinates that a picture can show: finite, and small enough that boxes of them stay finite.
inline constexpr double kMaxPictured = 1e100;
inline bool IsPictured(double v) {
  return v >= -kMaxPictured && v <= kMaxPictured;  // false for not-a-number
}
inline bool IsPictured(const P3& p) {
  return IsPictured(p.x) && IsPictured(p.y);
}

// The least side of a drawing that is enlarged to be seen: below it no finite scale would do, and
// the drawing is a dot.
inline constexpr double kLeastEnlarged = 1e-300;

// Pixels = (dx + x * scale, dy - y * scale).
struct Fit {
  double scale = 1;
  double dx = 0;
  double dy = 0;

  DevicePoint Apply(double x, double y) const { return {dx + x * scale, dy - y * scale}; }
  DevicePoint Apply(const P3& p) const { return Apply(p.x, p.y); }
  DevicePoint Apply(const P2& p) const { return Apply(p.x, p.y); }
};

// A rectangle of a picture, in pixels.
struct PictureFrame {
  double left = 0;
  double top = 0;
  double width = 0;
  double height = 0;
};

// Fits the box into the frame less `margin` on each side: proportions kept, centred. A box without
// width and height is centred at scale 1; a margin that leaves nothing leaves one pixel.
Fit FitExtent(const Extent3& box, const PictureFrame& frame, double margin);

}  // namespace kerno
