// Which boxes of a long list overlap, found without comparing each with each.
#pragma once

#include <cstddef>
#include <vector>

#include "drawing/vector.h"

namespace kerno {

// The places of the boxes in groups: those that overlap, by themselves or by way of others, stand
// together, in the order of the list, and the groups in the order of their first members. Empty
// boxes are in no group.
std::vector<std::vector<size_t>> Overlapping(const std::vector<Box2>& boxes);

// Each box that is not empty in a group of its own.
std::vector<std::vector<size_t>> EachAlone(const std::vector<Box2>& boxes);

}  // namespace kerno
