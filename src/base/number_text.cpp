#include "base/number_text.h"

#include <charconv>
#include <cmath>
#include <cstring>

namespace kerno {
namespace {

// Fixed notation of a value below 1 with 40 decimals, or general notation of any double with 40
// digits.
constexpr size_t kLongest = 96;

bool AppendNonFinite(std::string* out, double value) {
  if (std::isfinite(value)) return false;
  out->append(std::isnan(value) ? "nan" : value < 0 ? "-inf" : "inf");
  return true;
}

// to_chars writes exponents of two digits where they suffice; the program's files carry three.
void AppendWithLongExponent(std::string* out, const char* first, const char* last) {
  if (last - first > 4 && last[-4] == 'e') {
    out->append(first, static_cast<size_t>(last - 2 - first));
    out->push_back('0');
    out->append(last - 2, 2);
  } else {
    out->append(first, static_cast<size_t>(last - first));
  }
}

}  // namespace

void AppendGeneral(std::string* out, double value, int digits) {
  if (AppendNonFinite(out, value)) return;
  char text[kLongest];
  const auto end =
      std::to_chars(text, text + sizeof text, value, std::chars_format::general, digits);
  AppendWithLongExponent(out, text, end.ptr);
}

void AppendNumberText(std::string* out, double value, int digits) {
  const double magnitude = std::fabs(value);
  if (!(magnitude < 1) || value == 0) {  // zero is "0" or "-0" in general notation already
    AppendGeneral(out, value, digits);
    return;
  }
  char text[kLongest];
  const char* end =
      std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, digits).ptr;
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
