#include "platform/font_families.h"

#include <algorithm>

namespace kerno {

bool CharacterSet::Has(char32_t ch) const {
  const auto after = std::ranges::upper_bound(ranges, ch, {}, &CharacterRange::first);
  return after != ranges.begin() && ch <= std::prev(after)->last;
}

void Append(CharacterRange range, CharacterSet* characters) {
  std::vector<CharacterRange>& ranges = characters->ranges;
  if (!ranges.empty() && ranges.back().last + 1 == range.first) {
    ranges.back().last = range.last;
  } else {
    ranges.push_back(range);
  }
}

}  // namespace kerno
