// Numbers and colours as SVG takes them.
#pragma once

#include <cstdint>
#include <string>

#include "parts/color.h"

namespace kerno {

// How many digits the numbers of an SVG file have: the setting "Dec", "SvgOut::Precision" (default
// 15, kept within 1 to 40), read again when 11 seconds have passed since it was last read.
int SvgPrecision();

// Forgets the value that was read. For tests and for a program whose settings change.
void ResetSvgPrecision();

// The number form of the program's texts (base/number_text.h) as far as SVG knows it: a point that
// nothing follows is left out.
void AppendSvgNumber(std::string* out, double value, int digits);
std::u16string SvgNumberText(double value, int digits);

// "#rrggbb", lower case.
std::string SvgColor(Color color);

}  // namespace kerno
