// Lines that a tool follows, rather than outlines: each drawn once, with short ways between them.
#pragma once

#include <utility>
#include <vector>

#include "drawing/segment.h"

namespace kerno {

// The strokes without what they draw again: a curve or an arc that lies on an earlier one, in
// either direction, and the parts of lines that lie on earlier lines. What is left of a stroke may
// be several; one that ends where it began is closed. `tolerance` (above 0) is how far apart ends
// and lines may be to count as the same. The time grows with the square of the number of lines of
// one direction.
std::vector<Path> DrawnOnce(const std::vector<Path>& strokes, double tolerance);

// The strokes in their order, each in the direction that makes the ways between them the shortest
// in all; without a difference they stay as they are.
std::vector<Path> WithShortWays(std::vector<Path> strokes);

// The two halves of an arc.
std::pair<Piece, Piece> HalvesOf(const Piece& arc);

// The path with cubic curves in place of its arcs, within a ten-millionth of their radius.
Path WithoutArcs(const Path& path);

}  // namespace kerno
