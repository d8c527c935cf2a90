// The one transformation of the plane that moves, scales, turns, leans and flips drawings.
#pragma once

#include "drawing/geometry.h"
#include "drawing/path.h"

namespace kerno {

// p goes to `to` + M (p - `from`): a map about a point. A chain of them is applied one after the
// other and not multiplied out, so that each step rounds as its own formula does.
struct Affine {
  double xx = 1, xy = 0;  // x of the result takes xx of x and xy of y
  double yx = 0, yy = 1;
  P2 from, to;

  P2 Apply(const P2& p) const {
    const P2 d = {p.x - from.x, p.y - from.y};
    return {to.x + d.x * xx + d.y * xy, to.y + d.y * yy + d.x * yx};
  }
};

// A map that leaves the origin where it is.
struct Linear {
  double xx = 1, xy = 0, yx = 0, yy = 1;

  bool operator==(const Linear&) const = default;
  P2 Apply(const P2& p) const { return {xx * p.x + xy * p.y, yx * p.x + yy * p.y}; }
  // The results are multiplied by x and y.
  Linear Scaled(double x, double y) const { return {xx * x, xy * x, yx * y, yy * y}; }
  bool TurnsOver() const { return xx * yy - xy * yx < 0; }
  // This map after another one.
  Linear After(const Linear& m) const {
    return {xx * m.xx + xy * m.yx, xx * m.xy + xy * m.yy, yx * m.xx + yy * m.yx,
            yx * m.xy + yy * m.yy};
  }
};

// A turn about `centre` by an angle in degrees, counter-clockwise where y points up. Sine and
// cosine of whole multiples of 90 degrees are exact.
Affine Turned(double degrees, const P2& centre);

// Leans without turning: each point turns about the point of the line y = `base` below or above it,
// so that heights shrink by the angle's cosine.
Affine Leaned(double degrees, double base);

// A path after a map; arcs stay arcs, which is right for maps that scale both ways alike.
Path Mapped(const Path& path, const Linear& map);
Path Moved(const Path& path, const P2& by);

// Scales, moves, and turns y over: x * scale + to.x, to.y - y * scale. Every change between y up
// and y down is one of these.
inline Affine FlippedY(double scale, const P2& to) {
  return {scale, 0, 0, -scale, {}, to};
}

}  // namespace kerno
