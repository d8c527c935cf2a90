// Bold that a family lacks, made of the outlines of a lighter face.
//
// Units are the font's, y points up.
#pragma once

#include <vector>

#include "drawing/path.h"

namespace kerno {

// How far outlines move outwards, in parts of an em: strokes grow by a 24th of it, as with the
// makeshift bold of rasterisers.
inline constexpr double kBoldShare = 1.0 / 48;
// How far letters lean that are made italic: the tangent of 12 degrees.
inline constexpr double kMadeSlant = 0.21256;

// The outlines of a glyph moved outwards by `distance`: welded first, so that nothing crosses, then
// moved within `tolerance`. Made of lines and cubic curves.
std::vector<Path> Emboldened(const std::vector<Path>& paths, double distance, double tolerance);

}  // namespace kerno
