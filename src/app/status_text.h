// What the status line says of the drawing.
#pragma once

#include <string>
#include <string_view>

#include "app/dialog_view.h"
#include "drawing/geometry.h"
#include "export/draw_texts.h"
#include "outline/typesetter.h"
#include "parts/parts.h"

namespace kerno {

// Characters, contours, points, size in units and the face.
std::u16string DescribeText(const TypesetText& set, const FaceForm& wanted, const Extent3& box);

// What the user should know besides: a substitute for the face that was asked for, characters
// without a glyph or without an outline at this size, a text that ends early. To be added to the
// status; nothing where all is well, as with those that follow.
std::u16string DescribeWarnings(const TypesetText& set, const FaceForm& wanted);

// What the classic layout does not do for the scripts of a text.
std::u16string DescribeUnshaped(std::u16string_view text);

// That the licence of a face may forbid to take its outlines.
std::u16string DescribeLicence(std::u16string_view face);

// That letters are bent to whole units at a height this low.
std::u16string DescribeHeight(std::u16string_view height);

// What a picture of the drawing cannot show.
std::u16string DescribeUnseen(const PictureNotes& notes);

// The facts of parts that came from a file.
std::u16string DescribeParts(const PartsA& parts, std::u16string_view file, const Extent3& box);

// The colour of a status line of this kind where other text has the colour `normal` on `paper`.
Color StatusInk(StatusKind kind, Color normal, Color paper);

}  // namespace kerno
