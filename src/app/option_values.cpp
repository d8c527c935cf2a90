#include "app/option_values.h"

#include <charconv>
#include <cmath>

#include "app/arithmetic.h"
#include "app/reports.h"
#include "base/text.h"

namespace kerno {
namespace {

std::string Quoted(std::string_view text) {
  return "\"" + std::string(text) + "\"";
}

template <class T>
std::errc ParseWhole(std::string_view text, T* value) {
  if (text.starts_with('+')) text.remove_prefix(1);
  if (text.empty() || text.front() == '+') return std::errc::invalid_argument;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), *value);
  if (error != std::errc()) return error;
  return end == text.data() + text.size() ? std::errc() : std::errc::invalid_argument;
}

}  // namespace

std::optional<int32_t> WholeNumber(std::string_view option, std::string_view text, int32_t least,
                                   int32_t most) {
  int32_t value = 0;
  const std::errc error = ParseWhole(text, &value);
  if (error == std::errc::invalid_argument) {
    ReportError(option, Quoted(text) + " is not a whole number");
    return std::nullopt;
  }
  if (error != std::errc() || value < least || value > most) {
    ReportError(option, Quoted(text) + " is outside " + std::to_string(least) + " to " +
                            std::to_string(most));
    return std::nullopt;
  }
  return value;
}

std::optional<double> Number(std::string_view option, std::string_view text) {
  double value = 0;
  const std::errc error = ParseWhole(text, &value);
  if (error == std::errc::result_out_of_range) {
    ReportError(option, Quoted(text) + " is too large or too small a number");
    return std::nullopt;
  }
  if (error == std::errc() && std::isfinite(value)) return value;
  const auto sum = Calculate(text);
  if (!sum) ReportError(option, Quoted(text) + " is not a number");
  return sum;
}

std::optional<P2> Point(std::string_view option, std::string_view text) {
  const size_t comma = text.find(',');
  if (comma == text.npos) {
    ReportError(option, Quoted(text) + " is not a point X,Y");
    return std::nullopt;
  }
  const auto x = Number(option, text.substr(0, comma));
  const auto y = x ? Number(option, text.substr(comma + 1)) : std::nullopt;
  if (!y) return std::nullopt;
  return P2{*x, *y};
}

std::optional<std::u16string> TextArgument(std::string_view option, std::string_view text) {
  size_t offset = 0;
  auto decoded = Utf8ToUtf16(text, &offset);
  if (!decoded) ReportError(option, "is not UTF-8 (byte offset " + std::to_string(offset) + ")");
  return decoded;
}

std::filesystem::path PathArgument(std::string_view text) {
  return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

bool IsFileName(std::string_view option, std::string_view text) {
  if (text.empty()) ReportError(option, "the name is empty");
  return !text.empty();
}

void ReportChoice(std::string_view option, std::string_view text, std::string_view choices) {
  ReportError(option, Quoted(text) + " is none of " + std::string(choices));
}

}  // namespace kerno
