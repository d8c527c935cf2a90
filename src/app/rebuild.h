// The rebuild: placed contours become the stored contours and the parts model.
#pragma once

#include <cstdint>
#include <string>

#include "outline/glyph_contours.h"
#include "parts/parts.h"

namespace kerno {

// What a contour becomes in its part.
enum class ContourElements {
  kLines,  // a closed chain of lines, without lines of no length: a cutter would pierce twice
  kFaces,  // one face
  kBoth,
};

struct RebuildOptions {
  ContourElements elements = ContourElements::kLines;
  std::u16string layer = u"Kerno";
  double scale = 1;  // multiplies the finished geometry
  P2 at;             // added after the scale (y up)
};

// Turns placed contours (y down) into stored ones: y up again, scaled and moved.
void StoreContours(const RebuildOptions& options, GlyphContours* contours);

// Adds one part per stored contour to *parts, y up. Contour i gets the hues 30 i and 30 i + 180 for
// pen and brush: neighbours step round the colour wheel.
void BuildParts(const GlyphContours& stored, const RebuildOptions& options, PartsA* parts);

}  // namespace kerno
