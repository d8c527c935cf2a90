#include "base/number_text.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <string_view>

namespace kerno {
namespace {

// Fixed notation of a value below 1 with 40 decimals, or general notation of any double with 40
// digits.
constexpr size_t kLongest = 96;

char* Put(char* to, std::string_view text) {
  std::memcpy(to, text.data(), text.size());
  return to + text.size();
}

// to_chars writes exponents of two digits where they suffice; the program's files carry three.
char* LengthenExponent(char* first, char* last) {
  if (last - first <= 4 || last[-4] != 'e') return last;
  last[0] = last[-1];
  last[-1] = last[-2];
  last[-2] = '0';
  return last + 1;
}

constexpr double kPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8, 1e9,
                              1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18};
constexpr int kMostQuickDigits = 15;  // 10^15 and every half below it are exact doubles

// magnitude x 10^decimals as an integer, rounded as the exact product is, ties to even. The product
// is to be below 10^15. Its rounded value is a multiple of its last bit, so it can stand on the
// wrong side of a half only by lying on the half itself; there the exact rest decides.
uint64_t RoundedProduct(double magnitude, int decimals) {
  const double power = kPowers[decimals];
  const double product = magnitude * power;
  const auto whole = static_cast<uint64_t>(product);
  const double above_half = product - static_cast<double>(whole) - 0.5;
  if (above_half != 0) return above_half > 0 ? whole + 1 : whole;
  const double rest = std::fma(magnitude, power, -product);
  if (rest != 0) return rest > 0 ? whole + 1 : whole;
  return whole + (whole & 1);
}

char* WriteDigits(char* to, uint64_t value, int count) {
  for (char* at = to + count; at > to; value /= 10) *--at = static_cast<char>('0' + value % 10);
  return to + count;
}

int DigitCount(uint64_t value) {
  int count = 1;
  while (value >= 10) {
    value /= 10;
    ++count;
  }
  return count;
}

// `scaled` / 10^decimals without trailing zeros behind the point, and without a bare point.
char* WriteScaled(char* to, uint64_t scaled, int decimals) {
  while (decimals > 0 && scaled % 10 == 0) {
    scaled /= 10;
    --decimals;
  }
  const auto power = static_cast<uint64_t>(kPowers[decimals]);
  const uint64_t whole = scaled / power;
  to = WriteDigits(to, whole, DigitCount(whole));
  if (decimals == 0) return to;
  *to++ = '.';
  return WriteDigits(to, scaled % power, decimals);
}

// General notation of what needs no exponent, several times faster than to_chars. Null where it
// does not apply.
char* WriteQuick(char* to, double value, int digits) {
  const double magnitude = std::fabs(value);
  if (digits > kMostQuickDigits || !(magnitude >= 1e-4) || magnitude >= kPowers[digits]) {
    return nullptr;
  }
  int exponent = -4;  // 10^exponent <= magnitude, or so close below that rounding gets there
  constexpr double kSmallPowers[] = {1e-3, 1e-2, 1e-1};
  for (const double power : kSmallPowers) exponent += magnitude >= power;
  if (exponent == -1) {
    while (exponent < digits - 1 && magnitude >= kPowers[exponent + 1]) ++exponent;
  }
  int decimals = digits - 1 - exponent;
  uint64_t scaled = RoundedProduct(magnitude, decimals);
  if (scaled >= static_cast<uint64_t>(kPowers[digits])) {  // rounded up to one digit more
    if (decimals == 0) return nullptr;
    scaled /= 10;
    --decimals;
  }
  if (std::signbit(value)) *to++ = '-';
  return WriteScaled(to, scaled, decimals);
}

}  // namespace

char* WriteGeneral(char* to, double value, int digits) {
  if (value == 0) return Put(to, std::signbit(value) ? "-0" : "0");
  if (char* end = WriteQuick(to, value, digits)) return end;
  if (std::isnan(value)) return Put(to, "nan");
  if (std::isinf(value)) return Put(to, value < 0 ? "-inf" : "inf");
  char text[kLongest];
  char* end =
      std::to_chars(text, text + sizeof text, value, std::chars_format::general, digits).ptr;
  end = LengthenExponent(text, end);
  std::memcpy(to, text, static_cast<size_t>(end - text));
  return to + (end - text);
}

void AppendGeneral(std::string* out, double value, int digits) {
  char text[kLongest];
  const char* end = WriteGeneral(text, value, digits);
  out->append(text, static_cast<size_t>(end - text));
}

void AppendNumberText(std::string* out, double value, int digits) {
  const double magnitude = std::fabs(value);
  if (!(magnitude < 1) || value == 0) {  // zero is "0" or "-0" in general notation already
    AppendGeneral(out, value, digits);
    return;
  }
  char text[kLongest];
  const char* end = nullptr;
  if (digits <= kMostQuickDigits) {
    char* at = text;
    if (value < 0) *at++ = '-';
    const auto power = static_cast<uint64_t>(kPowers[digits]);
    const uint64_t scaled = RoundedProduct(magnitude, digits);
    at = Put(at, scaled >= power ? "1." : "0.");
    end = WriteDigits(at, scaled % power, digits);
  } else {
    end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, digits).ptr;
  }
  while (end > text + 1 && end[-1] == '0') --end;
  out->append(text, static_cast<size_t>(end - text));
}

std::string NumberText(double value, int digits) {
  std::string text;
  AppendNumberText(&text, value, digits);
  return text;
}

void AppendShortest(std::string* out, double value) {
  if (!std::isfinite(value)) {
    out->append("null");
    return;
  }
  char text[kLongest];
  const char* end = std::to_chars(text, text + sizeof text, value).ptr;
  out->append(text, static_cast<size_t>(end - text));
}

void AppendInteger(std::string* out, int64_t value) {
  char text[24];
  const char* end = std::to_chars(text, text + sizeof text, value).ptr;
  out->append(text, static_cast<size_t>(end - text));
}

}  // namespace kerno
