// Rulers and the grid of a preview. Drawing coordinates in the drawing's unit, y up; pixels y down.
#pragma once

#include <string>

#include "app/preview_inks.h"
#include "drawing/affine.h"
#include "drawing/drawing.h"
#include "platform/drawing.h"

namespace kerno {

inline constexpr double kRulerWidth = 20;  // frame pixels

// How far apart the marks of a ruler are, in the drawing's unit: 1, 2 or 5 times a power of ten;
// below an inch by halves.
struct RulerSteps {
  double figures = 10;  // each with its figure
  double marks = 1;     // a whole part of it
};
RulerSteps RulerStepsFor(LengthUnit unit, double pixels_per_unit);

// "-12.5", without zeros at the end.
std::string RulerFigure(double value);

// The picture's size and how the drawing lies in it, in the context's pixels.
struct RulerFrame {
  double width = 0, height = 0;
  double density = 1;  // of the context's pixels in one of the frame
  Affine fit;          // from the drawing to the context's pixels
  LengthUnit unit = LengthUnit::kMillimetre;
};

// Lines at the ruler's steps over the whole picture.
void PaintGrid(DrawingContext& dc, const RulerFrame& frame, const PreviewInks& inks);
// Along the upper and the left edge, 0 at the drawing's origin.
void PaintRulers(DrawingContext& dc, const RulerFrame& frame, const PreviewInks& inks);

}  // namespace kerno
