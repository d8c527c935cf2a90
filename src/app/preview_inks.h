// What a preview of a drawing for a machine is painted with.
#pragma once

#include "parts/color.h"

namespace kerno {

enum class PreviewLook {
  kFilled,    // figures with open counters, as a filled SVG shows them
  kCutLines,  // hairlines, with the start of each path and its direction
  kNodes,     // hairlines, with the points that they run through and the control points of curves
};

struct PreviewInks {
  Color paper = 0xFFFFFF;
  Color start = 0;     // the dot at the start of a path and the arrow of its direction
  Color corner = 0;    // a node between straight lines
  Color node = 0;      // one at the end of an arc or of a curve
  Color control = 0;   // a control point and the line to it
  Color grid = 0;      // lines at the steps of the marks
  Color grid_far = 0;  // at those of the figures
  Color axis = 0;      // through the drawing's origin
  Color ruler = 0;
  Color ruler_ink = 0;
  Color measure = 0;
  Color sheet = 0;  // the edge of the material
};

// The set for light or for dark paper.
PreviewInks InksOn(Color paper);

// The ink, or the one nearest to it that can be read on the paper.
Color LegibleOn(Color paper, Color ink);

}  // namespace kerno
