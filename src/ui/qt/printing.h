// Drawings on paper, in true size.
#pragma once

#include <string_view>

#include "drawing/drawing.h"

class QPainterPath;
class QWidget;

namespace kerno {

// Asks for a printer, tells where the drawing is larger than the page, and prints.
void PrintDrawing(QWidget* parent, const Drawing& drawing, std::u16string_view title);

// The drawing's paths in millimetres, y down from the upper edge of its picture.
QPainterPath PathForPaper(const Drawing& drawing);

}  // namespace kerno
