// What the classic layout does not do for the text of a script.
#pragma once

#include <string_view>
#include <vector>

#include "outline/scripts.h"

namespace kerno {

// "is set from left to right", "its letters are not joined" and so on.
std::vector<std::u16string_view> ShortcomingsFor(const ScriptNeeds& needs);

}  // namespace kerno
