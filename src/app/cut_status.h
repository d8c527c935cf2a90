// What the Cut page says of a drawing, in the language of the window.
#pragma once

#include <string>
#include <vector>

#include "app/cut.h"

namespace kerno {

// "120.000 x 20.130 mm"
std::u16string SizeOf(const CutDrawing& made);

// "12 closed paths, 3 open paths, 345.6 mm to cut"
std::u16string DescribeCut(const CutDrawing& made);

// What the user should know before the drawing is cut, the worst first: missing characters, paths
// that cross, touch, vanished or are open, letters from other faces, made ones, faces that do not
// permit embedding.
std::vector<std::u16string> WarningsOf(const CutDrawing& made);

}  // namespace kerno
