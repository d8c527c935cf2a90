// The names of a list that a user most likely meant by a name that is not in it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kerno {

// How many units must be added, taken away, replaced or swapped with the next one to make one text
// of the other, ASCII case ignored (the edit distance of Damerau and Levenshtein, each unit changed
// once).
size_t EditDistance(std::u16string_view a, std::u16string_view b);

// At most `count` of the names, the nearest first; names at the same distance keep their order.
std::vector<std::u16string> NearestNames(std::u16string_view wanted,
                                         const std::vector<std::u16string>& names, size_t count);

}  // namespace kerno
