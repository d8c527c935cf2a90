// The hatch styles of brushes: their names, and their lines in model coordinates (y up).
//
// A pattern is anchored at the model's origin, so that neighbouring faces continue it. Its measures
// are multiples of a unit that HatchUnit chooses for a drawing: 1 for drawings of usual size, whose
// six system styles then repeat every 8 units as the system's do every 8 pixels.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "drawing/geometry.h"
#include "parts/parts.h"

namespace kerno {

// What a hatch number draws.
enum class HatchKind {
  kSolid,   // fills
  kHollow,  // draws nothing
  kFigures,
};
HatchKind HatchKindOf(int32_t hatch);

// How a brush fills faces.
HatchKind FillKindOf(const BrushAttributes& brush);

// The number of named styles; numbers from 0 on.
int32_t HatchCount();

// The style's name; "HS_....." for a number outside the table.
std::string_view HatchName(int32_t hatch);

struct HatchLine {
  P2 from, to;
};

struct HatchCircle {
  P2 centre;
  double radius = 0;
  bool filled = false;
};

struct HatchFigures {
  std::vector<HatchLine> lines;
  std::vector<HatchCircle> circles;
};

// A power of two: 1 for a drawing whose longer side is 64 to 4,096, otherwise such that the side
// comes into that range. 1 for a drawing without size.
double HatchUnit(const Extent3& drawing);

// The figures of a style that may touch the box, lines cut at it. Nothing for a style that is not
// of figures; a style outside the table is drawn as diagonal lines.
HatchFigures HatchOver(int32_t hatch, const Extent3& box, double unit);

// The pieces of a line inside closed loops by the alternate rule, in order along the line. The
// loops need not repeat their first point.
std::vector<HatchLine> ClipToLoops(const HatchLine& line, std::span<const std::vector<P2>> loops);

// Whether a point lies inside the loops by the alternate rule.
bool IsInside(const P2& point, std::span<const std::vector<P2>> loops);

}  // namespace kerno
