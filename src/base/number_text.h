// Numbers as text, the same on every platform and in every locale: the decimal separator is a point
// and exponents have three digits.
#pragma once

#include <cstdint>
#include <string>

namespace kerno {

// The number form of the program's own text formats. A value of 0 < |v| < 1 is printed in fixed
// notation with `digits` decimals, any other in general notation with `digits` significant digits.
// Below 1 (zero included) trailing zeros are then cut, a point left at the end stays ("0."), and
// negative zero is "-0". Not-a-number is "nan", infinities are "inf" and "-inf".
// `digits` is 1 to 40.
void AppendNumberText(std::string* out, double value, int digits);
std::string NumberText(double value, int digits);

// General notation with `digits` significant digits (1 to 40), trailing zeros dropped, as a stream
// prints doubles; exponent form below 1e-4 and from 10^digits.
void AppendGeneral(std::string* out, double value, int digits);

// The same text written at `to`, at most `digits` + 8 characters; the position behind it.
char* WriteGeneral(char* to, double value, int digits);

// The shortest text that reads back to the same double, as JSON takes it; not-a-number and
// infinities are "null".
void AppendShortest(std::string* out, double value);

void AppendInteger(std::string* out, int64_t value);

}  // namespace kerno
