// Numbers as people type them into a field: 20, 20*2, (100-4)/3.
#pragma once

#include <optional>
#include <string_view>

namespace kerno {

// The value of a sum of decimal numbers with +, -, *, / and parentheses; a number alone is read
// exactly as std::from_chars does. Nothing for what is no such text, and for a division by 0.
std::optional<double> Calculate(std::string_view text);

}  // namespace kerno
