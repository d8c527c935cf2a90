// What the fills and the outlines of an SVG drawing share while they are written.
#pragma once

#include <cstddef>

#include "export/fit.h"
#include "export/svg_elements.h"

namespace kerno {

struct SvgCanvas {
  // The vertex of an index when a picture can show it; otherwise null, and counted.
  const P3* Shown(const Parts& part, int32_t index) {
    const P3* p = VertexAt(part, index);
    if (p && IsPictured(*p)) return p;
    ++left_out;
    return nullptr;
  }

  XmlOut& xml;
  int digits;  // of every number
  SvgElements shapes;
  double hairline = 1;    // width of a pen of width 0: a thousandth of the drawing, or so
  double hatch_unit = 1;  // between two lines of a hatch
  size_t left_out = 0;    // elements that no picture can show
};

}  // namespace kerno
