#include "export/fixed_number.h"

#include <cmath>
#include <cstdint>

namespace kerno {

bool AppendFixed(std::string* out, double value, int decimals) {
  constexpr double kMost = 1e9;
  constexpr int64_t kPowers[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};
  if (!(std::fabs(value) <= kMost)) {
    out->push_back('0');
    return false;
  }
  const int64_t unit = kPowers[decimals];
  int64_t scaled = std::llround(value * static_cast<double>(unit));
  if (scaled < 0) {
    out->push_back('-');
    scaled = -scaled;
  }
  char digits[32];
  char* const end = digits + sizeof digits;
  char* at = end;
  int64_t whole = scaled / unit;
  int64_t part = scaled % unit;
  int left = decimals;
  while (left > 0 && part % 10 == 0) {
    part /= 10;
    --left;
  }
  if (left > 0) {
    for (; left > 0; --left) {
      *--at = static_cast<char>('0' + part % 10);
      part /= 10;
    }
    *--at = '.';
  }
  do {
    *--at = static_cast<char>('0' + whole % 10);
    whole /= 10;
  } while (whole > 0);
  out->append(at, end);
  return true;
}

}  // namespace kerno
