#include "base/profile_values.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "base/number_text.h"

namespace kerno {
namespace {

constexpr int kDigits = 20;
constexpr size_t kPaddedWidth = 9;
constexpr size_t kLongestNumber = 400;  // 1.8e308 with six decimals

void AppendInt(std::u16string* text, int64_t value, NumberForm form) {
  std::string digits;
  AppendInteger(&digits, value);
  const size_t sign = value < 0 ? 1 : 0;
  if (form == NumberForm::kPadded && digits.size() < kPaddedWidth) {
    digits.insert(sign, kPaddedWidth - digits.size(), '0');
  }
  text->append(digits.begin(), digits.end());
}

void AppendDouble(std::u16string* text, double value, NumberForm form) {
  std::string digits;
  if (form == NumberForm::kPadded && std::isfinite(value)) {
    std::array<char, kLongestNumber> buffer;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                   std::chars_format::fixed, 6);
    digits.assign(buffer.data(), end.ptr);
  } else {
    AppendGeneral(&digits, value, kDigits);
  }
  text->append(digits.begin(), digits.end());
}

// Takes the next number off the front; 0 when there is none, and then nothing more is read.
template <typename Number>
Number TakeNumber(std::u16string_view* text) {
  while (!text->empty() && text->front() <= u' ') text->remove_prefix(1);
  if (!text->empty() && text->front() == u'+') text->remove_prefix(1);
  std::string digits;  // as far as it can be one
  for (const char16_t unit : *text) {
    if (unit <= u' ' || unit >= 0x7F || digits.size() == kLongestNumber) break;
    digits.push_back(static_cast<char>(unit));
  }
  Number number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error == std::errc::result_out_of_range) {
    const bool negative = digits.front() == '-';
    using Limits = std::numeric_limits<Number>;
    if constexpr (std::is_integral_v<Number>) {
      number = negative ? Limits::min() : Limits::max();
    } else {
      // Too large or too small: a text as large as the first has no exponent below 0.
      const bool tiny = digits.find("e-") != digits.npos || digits.find("E-") != digits.npos;
      number = tiny ? 0 : Limits::infinity();
      if (negative) number = -number;
    }
  }
  const bool found = end != digits.data();
  text->remove_prefix(found ? static_cast<size_t>(end - digits.data()) : text->size());
  return number;
}

}  // namespace

std::u16string Int64Text(int64_t value) {
  std::u16string text;
  AppendInt(&text, value, NumberForm::kPlain);
  return text;
}

std::u16string DoubleText(double value) {
  std::u16string text;
  AppendDouble(&text, value, NumberForm::kPlain);
  return text;
}

std::u16string RectText(const ProfileRect& value, NumberForm form) {
  std::u16string text;
  for (const int32_t edge : {value.left, value.top, value.right, value.bottom}) {
    if (!text.empty()) text.push_back(u' ');
    AppendInt(&text, edge, form);
  }
  return text;
}

std::u16string PointText(const ProfilePoint& value, NumberForm form) {
  std::u16string text;
  AppendInt(&text, value.x, form);
  text.push_back(u' ');
  AppendInt(&text, value.y, form);
  return text;
}

std::u16string Point3Text(const ProfilePoint3& value, NumberForm form) {
  std::u16string text;
  for (const double coordinate : {value.x, value.y, value.z}) {
    if (!text.empty()) text.push_back(u' ');
    AppendDouble(&text, coordinate, form);
  }
  return text;
}

int64_t Int64OfText(std::u16string_view text) {
  return TakeNumber<int64_t>(&text);
}

double DoubleOfText(std::u16string_view text) {
  return TakeNumber<double>(&text);
}

ProfileRect RectOfText(std::u16string_view text) {
  ProfileRect rect;
  for (int32_t* edge : {&rect.left, &rect.top, &rect.right, &rect.bottom}) {
    *edge = TakeNumber<int32_t>(&text);
  }
  return rect;
}

ProfilePoint PointOfText(std::u16string_view text) {
  ProfilePoint point;
  point.x = TakeNumber<int32_t>(&text);
  point.y = TakeNumber<int32_t>(&text);
  return point;
}

ProfilePoint3 Point3OfText(std::u16string_view text) {
  ProfilePoint3 point;
  for (double* coordinate : {&point.x, &point.y, &point.z}) *coordinate = TakeNumber<double>(&text);
  return point;
}

}  // namespace kerno
