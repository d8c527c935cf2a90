// A sheet that shows a text in many faces, and which faces have all of a text.
//
// Lengths are millimetres, y points up.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "drawing/drawing.h"
#include "platform/font_data.h"
#include "platform/status.h"

namespace kerno {

// Whether the face has a glyph for everything in the text, composed and decomposed letters alike.
// False for a face that cannot be read.
bool CoversText(const FaceRequest& face, std::u16string_view text);

struct Specimen {
  Drawing drawing;
  size_t rows = 0;
};

// A row for each family, its name on the left and the text on the right, one below the other from
// the origin downwards. Families that cannot be set are left out. Fails where none is left.
[[nodiscard]] Status MakeSpecimen(std::u16string_view text,
                                  const std::vector<std::u16string>& families, Specimen* made);

}  // namespace kerno
