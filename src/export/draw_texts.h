// The text elements of the parts model in a picture.
#pragma once

#include <cstddef>
#include <string_view>

#include "export/fit.h"
#include "parts/parts.h"
#include "platform/drawing.h"

namespace kerno {

// What a picture could not show, for the message that the caller gives.
struct PictureNotes {
  size_t left_out = 0;         // elements with coordinates that are not finite or absurdly large
  size_t texts_too_large = 0;  // texts whose message asks for a split text
  size_t texts_no_size = 0;    // texts that are too small or too large for a font
};

// Draws a text element with its block's centre on the anchor, through DrawOutline, with the
// selected pen and brush. The font is realised at a size that keeps its shapes when cut to whole
// units: logical units finer than pixels where the letters are small.
void DrawTextLine(DrawingContext& dc, const P3& anchor, const TextLine& line,
                  WritingDirection direction, const Affine& fit, PictureNotes* notes);

// Draws the text of an element without a face of its own: the horizontal default face in the
// colour given, centred on the anchor.
void DrawPlainText(DrawingContext& dc, const P3& anchor, std::u16string_view text, uint32_t color,
                   const Affine& fit, PictureNotes* notes);

// The box of a text element's ink in model coordinates, the anchor included; of the anchor alone
// where the text has no ink.
Extent3 TextLineBox(DeviceContext& dc, const P3& anchor, const TextLine& line,
                    WritingDirection direction);
Extent3 PlainTextBox(DeviceContext& dc, const P3& anchor, std::u16string_view text);

}  // namespace kerno
