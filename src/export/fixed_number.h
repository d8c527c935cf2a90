// Coordinates as machines take them: fixed notation, at most so many decimals, no zeros at the end,
// never "-0" and never an exponent. Values of up to 1e9; beyond, and for what is no number, "0" is
// written.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace kerno {

constexpr int kMostFixedDecimals = 8;
constexpr size_t kLongestFixed = 32;

// Writes up to kLongestFixed characters and returns their end.
char* PutFixed(char* at, double value, int decimals);

// The same in two steps: a number of the last decimal's units, whose sums are exact, and its text.
int64_t FixedUnits(double value, int decimals);
char* PutFixedUnits(char* at, int64_t units, int decimals);

void AppendFixed(std::string* out, double value, int decimals);

}  // namespace kerno
