// From model coordinates (y up) to picture coordinates (pixels, y down).
#pragma once

#include "drawing/affine.h"
#include "platform/drawing.h"

namespace kerno {

// The least side of a drawing that is enlarged to be seen: below it no finite scale would do, and
// the drawing is a dot.
inline constexpr double kLeastEnlarged = 1e-300;

// Where a point of the model lies in the picture.
inline DevicePoint Placed(const Affine& fit, const P2& p) {
  const P2 at = fit.Apply(p);
  return {at.x, at.y};
}
inline DevicePoint Placed(const Affine& fit, const P3& p) {
  return Placed(fit, P2{p.x, p.y});
}

// Pixels of a unit, for a map that FitExtent or FlippedY made.
inline double PixelsPerUnit(const Affine& fit) {
  return fit.xx;
}

// A rectangle of a picture, in pixels.
struct PictureFrame {
  double left = 0;
  double top = 0;
  double width = 0;
  double height = 0;
};

// A box whose sides are numbers, too: beyond half the largest number its corners are brought in.
Extent3 MeasurableBox(Extent3 box);

// Fits the box into the frame less `margin` on each side: proportions kept, centred. A box without
// width and height is centred at scale 1; a margin that leaves nothing leaves one pixel.
Affine FitExtent(const Extent3& box, const PictureFrame& frame, double margin);

}  // namespace kerno
