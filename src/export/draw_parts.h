// The parts model as a picture: one routine for the preview, the bitmap and the metafile.
//
// Model coordinates point y up, the context's pixels y down. Every part is drawn with its own pen
// and brush: faces filled (or hatched) without outline, then lines chained into polylines, edges,
// circles and arcs, points as small crosses, texts. What has a coordinate that is not finite, or
// beyond kMaxPictured, is left out and counted; so is what names a vertex that is not there.
#pragma once

#include "export/draw_texts.h"
#include "export/fit.h"
#include "outline/text_contours.h"
#include "parts/parts.h"
#include "platform/drawing.h"

namespace kerno {

struct DrawOptions {
  // Points nearer than this to the last one drawn are dropped, in pixels; 0 draws all. Half a pixel
  // suits a screen.
  double detail = 0;
};

// The selected pen, brush and font are selected back at the end.
PictureNotes DrawParts(DrawingContext& dc, const PartsA& model, const Affine& fit,
                       const DrawOptions& options);

// All contours (y up) as one set of polygons filled by the alternate rule, so that counters stay
// open, with the selected pen and brush and without any limit of number.
void DrawContours(DrawingContext& dc, const TextContours& contours, const Affine& fit,
                  const DrawOptions& options);

// The box of everything that DrawParts shows, half the pens' widths included; zero for a model that
// shows nothing. Texts are measured by `dc`; without one their anchors count alone.
Extent3 PictureBox(const PartsA& model, DeviceContext* dc);

// The box of contours.
Extent3 ContoursBox(const TextContours& contours);

}  // namespace kerno
