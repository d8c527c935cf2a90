// Numbers of single strokes, for engraving beside a sign without a font.
#pragma once

#include <cstdint>

#include "drawing/drawing.h"

namespace kerno {

// A digit, "-" or "." as open paths of straight lines, `height` high; y up, the lower left corner
// at 0, 0. Any other character has none.
Shape FigureStrokes(char figure, double height);
// How far after it the next one begins.
double FigureAdvance(char figure, double height);

// The digits of a number of at least 0 as open and closed paths of straight lines, `height` high; y
// up, the lower left corner at 0, 0.
Shape NumberStrokes(int64_t number, double height);

// From the left of the first digit to the right of the last one.
double NumberWidth(int64_t number, double height);

}  // namespace kerno
