#include "app/shortcomings.h"

namespace kerno {

std::vector<std::u16string_view> ShortcomingsFor(const ScriptNeeds& needs) {
  std::vector<std::u16string_view> lacks;
  if (needs.right_to_left) lacks.emplace_back(u"is set from left to right");
  if (needs.joins) lacks.emplace_back(u"its letters are not joined");
  if (needs.reorders) lacks.emplace_back(u"its letters are neither reordered nor combined");
  if (needs.marks && !needs.reorders) lacks.emplace_back(u"its marks are not placed");
  return lacks;
}

}  // namespace kerno
