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

// Characters, contours, points, size in units, the face really used, and what the user should know
// besides: a substitute for the face that was asked for, characters without a glyph or without an
// outline at this size, a text that ends early.
std::u16string DescribeText(const TypesetText& set, const FaceForm& wanted, const Extent3& box);

// The same of parts that came from a file.
std::u16string DescribeParts(const PartsA& parts, std::u16string_view file, const Extent3& box);

// Whether DescribeText has something to warn of.
bool HasWarning(const TypesetText& set, const FaceForm& wanted);

// What a picture of the drawing cannot show, to be added to the status; nothing where it shows all.
std::u16string DescribeUnseen(const PictureNotes& notes);

// The colour of a status line of this kind where other text has the colour `normal` on `paper`.
Color StatusInk(StatusKind kind, Color normal, Color paper);

}  // namespace kerno
