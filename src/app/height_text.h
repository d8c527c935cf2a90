// The character height as users type it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kerno {

// The range of the height's up-down control. Typed heights may lie outside.
inline constexpr int32_t kLowestHeight = -1000;
inline constexpr int32_t kHighestHeight = 10000;

// The plain decimal reading: blanks, a sign, digits; what follows is not read, no digits are 0,
// numbers past 32 bits are the nearest that fits.
int32_t HeightNumber(std::u16string_view text);

// Whether a text is a whole number and nothing besides but blanks around it.
bool IsHeightNumber(std::u16string_view text);

// The text after the up-down control has gone `steps` up (negative: down), kept in its range.
std::u16string SteppedHeight(std::u16string_view text, int32_t steps);

}  // namespace kerno
