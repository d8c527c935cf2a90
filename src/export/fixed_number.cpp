#include "export/fixed_number.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace kerno {
namespace {

// "00" to "99".
constexpr std::array<char, 200> kPairs = [] {
  std::array<char, 200> pairs{};
  for (size_t i = 0; i < 100; ++i) {
    pairs[2 * i] = static_cast<char>('0' + i / 10);
    pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
  }
  return pairs;
}();

void PutPair(char* at, uint64_t value) {
  std::memcpy(at, &kPairs[2 * value], 2);
}

char* PutWhole(char* at, uint64_t value) {
  std::array<char, 24> digits;
  size_t first = digits.size();
  for (; value >= 100; value /= 100) PutPair(&digits[first -= 2], value % 100);
  if (value >= 10) {
    PutPair(&digits[first -= 2], value);
  } else {
    digits[--first] = static_cast<char>('0' + value);
  }
  std::memcpy(at, &digits[first], digits.size() - first);
  return at + (digits.size() - first);
}

// A number of units, 10^kDecimals to one. With the power known, no division is left.
template <int kDecimals>
char* PutUnits(char* at, uint64_t units) {
  constexpr uint64_t kOne = [] {
    uint64_t one = 1;
    for (int i = 0; i < kDecimals; ++i) one *= 10;
    return one;
  }();
  at = PutWhole(at, units / kOne);
  uint64_t part = units % kOne;
  if (part == 0) return at;
  *at++ = '.';
  char* end = at + kDecimals;
  int left = kDecimals;
  for (; left >= 2; left -= 2, part /= 100) PutPair(at + left - 2, part % 100);
  if (left == 1) *at = static_cast<char>('0' + part);
  while (end[-1] == '0') --end;
  return end;
}

}  // namespace

int64_t FixedUnits(double value, int decimals) {
  static_assert(kMostFixedDecimals == 8);
  constexpr double kPowers[] = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8};
  constexpr double kMost = 1e9;
  if (!(std::fabs(value) <= kMost)) return 0;
  const auto units = static_cast<int64_t>(std::fabs(value) * kPowers[decimals] + 0.5);
  return value < 0 ? -units : units;
}

char* PutFixedUnits(char* at, int64_t units, int decimals) {
  if (units < 0) *at++ = '-';
  const auto magnitude = static_cast<uint64_t>(units < 0 ? -units : units);
  switch (decimals) {
    case 0:
      return PutWhole(at, magnitude);
    case 1:
      return PutUnits<1>(at, magnitude);
    case 2:
      return PutUnits<2>(at, magnitude);
    case 3:
      return PutUnits<3>(at, magnitude);
    case 4:
      return PutUnits<4>(at, magnitude);
    case 5:
      return PutUnits<5>(at, magnitude);
    case 6:
      return PutUnits<6>(at, magnitude);
    case 7:
      return PutUnits<7>(at, magnitude);
    default:
      return PutUnits<8>(at, magnitude);
  }
}

char* PutFixed(char* at, double value, int decimals) {
  return PutFixedUnits(at, FixedUnits(value, decimals), decimals);
}

void AppendFixed(std::string* out, double value, int decimals) {
  std::array<char, kLongestFixed> text;
  out->append(text.data(), PutFixed(text.data(), value, decimals));
}

}  // namespace kerno
