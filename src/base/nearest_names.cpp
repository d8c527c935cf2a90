#include "base/nearest_names.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "base/text.h"

namespace kerno {

size_t EditDistance(std::u16string_view a, std::u16string_view b) {
  const std::u16string from = AsciiLower(a);
  const std::u16string to = AsciiLower(b);
  // row[j]: the distance from the units of `from` seen so far to the first j units of `to`;
  // `above` and `top` are those of one and two units less.
  std::vector<size_t> row(to.size() + 1), above(row.size()), top(row.size());
  std::iota(row.begin(), row.end(), size_t{0});
  for (size_t i = 1; i <= from.size(); ++i) {
    top.swap(above);
    above.swap(row);
    row[0] = i;
    for (size_t j = 1; j <= to.size(); ++j) {
      const size_t replaced = above[j - 1] + (from[i - 1] == to[j - 1] ? 0 : 1);
      row[j] = std::min({replaced, above[j] + 1, row[j - 1] + 1});
      const bool swapped = i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1];
      if (swapped) row[j] = std::min(row[j], top[j - 2] + 1);
    }
  }
  return row.back();
}

std::vector<std::u16string> NearestNames(std::u16string_view wanted,
                                         const std::vector<std::u16string>& names, size_t count) {
  std::vector<std::pair<size_t, const std::u16string*>> ranked;
  ranked.reserve(names.size());
  for (const std::u16string& name : names) {
    ranked.emplace_back(EditDistance(wanted, name), &name);
  }
  std::stable_sort(ranked.begin(), ranked.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<std::u16string> nearest;
  for (size_t i = 0; i < std::min(count, ranked.size()); ++i) {
    nearest.push_back(*ranked[i].second);
  }
  return nearest;
}

}  // namespace kerno
