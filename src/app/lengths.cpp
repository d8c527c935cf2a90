#include "app/lengths.h"

#include <charconv>
#include <cmath>
#include <string>
#include <utility>

#include "app/arithmetic.h"
#include "app/reports.h"
#include "drawing/drawing.h"

namespace kerno {
namespace {

constexpr double kLongest = 1e6;  // millimetres

constexpr std::pair<std::string_view, double> kUnits[] = {
    {"mm", 1}, {"cm", 10}, {"in", kMillimetresPerInch}, {"pt", kMillimetresPerInch / 72}};

std::string_view WithoutBlanks(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

// Takes the unit off the end of a text; nothing where it has none.
std::optional<double> TakeUnit(std::string_view* text) {
  for (const auto& [name, millimetres] : kUnits) {
    if (!text->ends_with(name)) continue;
    text->remove_suffix(name.size());
    *text = WithoutBlanks(*text);
    return millimetres;
  }
  return std::nullopt;
}

std::string Quoted(std::string_view text) {
  return "\"" + std::string(text) + "\"";
}

// `unit` is that of a length that names none.
std::optional<double> Read(std::string_view option, std::string_view text, LengthSign sign,
                           double unit) {
  std::string_view digits = WithoutBlanks(text);
  unit = TakeUnit(&digits).value_or(unit);
  if (digits.starts_with('+')) digits.remove_prefix(1);
  double value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  const bool is_number = !digits.empty() && error != std::errc::invalid_argument &&
                         end == digits.data() + digits.size() && !std::isnan(value);
  const auto sum = is_number ? std::optional(value) : Calculate(digits);
  if (sum) {
    value = *sum;
  } else {
    ReportError(option, Quoted(text) + " is not a length (20, 20mm, 2cm, 0.8in, 56pt)");
    return std::nullopt;
  }
  value *= unit;
  if ((is_number && error != std::errc()) || !(std::fabs(value) <= kLongest)) {
    ReportError(option, Quoted(text) + " is too long: a kilometre at most");
    return std::nullopt;
  }
  if (sign == LengthSign::kPositive && !(value > 0)) {
    ReportError(option, Quoted(text) + " is not above 0");
    return std::nullopt;
  }
  return value;
}

// The unit that stands at the end of the last of two lengths, for both.
double UnitOfBoth(std::string_view text) {
  text = WithoutBlanks(text);
  return TakeUnit(&text).value_or(1);
}

}  // namespace

std::optional<double> ReadLength(std::string_view option, std::string_view text, LengthSign sign) {
  return Read(option, text, sign, 1);
}

std::optional<LengthPair> ReadLengthPair(std::string_view option, std::string_view text) {
  const size_t cross = text.find('x');
  const std::string_view first = WithoutBlanks(text.substr(0, cross));
  const std::string_view second =
      cross == text.npos ? std::string_view() : WithoutBlanks(text.substr(cross + 1));
  if (first.empty() && second.empty()) {
    ReportError(option, Quoted(text) + " is no size W, xH or WxH");
    return std::nullopt;
  }
  LengthPair pair;
  const double unit = UnitOfBoth(text);
  const auto read = [&](std::string_view side, double* value) {
    if (side.empty()) return true;
    const auto length = Read(option, side, LengthSign::kPositive, unit);
    if (length) *value = *length;
    return length.has_value();
  };
  if (!read(first, &pair.width) || !read(second, &pair.height)) return std::nullopt;
  return pair;
}

std::optional<LengthPair> ReadLengthPoint(std::string_view option, std::string_view text) {
  const size_t comma = text.find(',');
  if (comma == text.npos) {
    ReportError(option, Quoted(text) + " is not a point X,Y");
    return std::nullopt;
  }
  const double unit = UnitOfBoth(text);
  const auto x = Read(option, text.substr(0, comma), LengthSign::kAny, unit);
  const auto y = x ? Read(option, text.substr(comma + 1), LengthSign::kAny, unit) : std::nullopt;
  if (!y) return std::nullopt;
  return LengthPair{*x, *y};
}

}  // namespace kerno
