// Coordinates as machines take them: fixed notation, at most so many decimals, no zeros at the end,
// never "-0" and never an exponent.
#pragma once

#include <string>

namespace kerno {

// Values of up to 1e9; beyond, and for what is no number, "0" is written and the answer is false.
bool AppendFixed(std::string* out, double value, int decimals);

}  // namespace kerno
