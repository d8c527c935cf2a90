// Paints the paths of a drawing for a machine.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "app/preview_inks.h"
#include "drawing/affine.h"
#include "drawing/drawing.h"
#include "export/drawing_style.h"
#include "platform/drawing.h"

namespace kerno {

// Keeps what is the same for every place of a shape while the scale stays.
class CutPainter {
 public:
  // `drawing` outlives the painter or the next call. Null: nothing to paint.
  void SetDrawing(const Drawing* drawing, const DrawingStyle& style);

  // What is painted: the part of the drawing that lies within a picture.
  struct View {
    Affine fit;  // from the drawing to the context's pixels
    double width = 0, height = 0;
    double density = 1;  // of the context's pixels in one of the frame
  };
  void Paint(DrawingContext& dc, const View& view, PreviewLook look, const PreviewInks& inks);

 private:
};

}  // namespace kerno
