// A string's outline drawn into a device context as filled polygons.
#pragma once

#include <cstddef>

#include "outline/typesetter.h"
#include "platform/drawing.h"

namespace kerno {

// What one call draws at most when the contours are handed over directly.
inline constexpr size_t kMaxOutlinePoints = 9999;
inline constexpr size_t kMaxOutlineContours = 499;

enum class OutlineDrawing {
  kDrawn,
  kTooLarge,  // the message asking for a split text was drawn instead
};

// Lays out and places the text (logical units of `dc`, y down) and draws its contours, cut to whole
// units towards zero, with one PolyPolygon, so that the counters of letters stay open. The pen and
// brush that the caller has selected draw, through copies; fonts and objects are selected back.
// Finer letters have more points: where the text's own height is given (above 0) and lower than the
// request's, a text that passes the limits is measured again at that height, and drawn when it
// keeps them there. Setting "Debug\DrawTTOutline", "UseP2A_Ary" (default 0, read on every call):
// other than 0 takes the contours one by one and knows no limit.
OutlineDrawing DrawOutline(DrawingContext& dc, const TextRequest& request, int32_t own_height = 0);

}  // namespace kerno
