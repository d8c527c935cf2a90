// What the groups of an SVG drawing share while they are written.
#pragma once

#include <cstddef>

#include "export/svg_elements.h"
#include "export/xml_out.h"

namespace kerno {

struct SvgCanvas {
  XmlOut& xml;
  int digits;  // of every number
  SvgElements shapes;
  double hairline = 1;    // width of a pen of width 0: a thousandth of the drawing, or so
  double hatch_unit = 1;  // between two lines of a hatch
  int clip_paths = 0;     // named so far
  size_t left_out = 0;    // elements that no picture can show
};

}  // namespace kerno
