#include "parts/ipx_lexer.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

#include "base/number_text.h"
#include "base/text.h"

namespace kerno::ipx {
namespace {

constexpr int kDigits = 15;
constexpr size_t kPiece = 1 << 16;  // bytes that a writer gathers before it hands them over

bool IsQuote(char c) {
  return c == '"' || c == '\'';
}
bool IsSpace(char c) {
  return IsSeparator(c) || c == '\t' || c == '\v' || c == '\f';
}
bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

const char* FindSeparator(const char* at, const char* end) {
  while (at != end && !IsSeparator(*at)) ++at;
  return at;
}

// The quote at or after `at` that stands before a separator or at the end; null when there is none.
const char* FindClosingQuote(const char* at, const char* end, char quote) {
  while (at != end) {
    at = static_cast<const char*>(std::memchr(at, quote, static_cast<size_t>(end - at)));
    if (!at) return nullptr;
    if (at + 1 == end || IsSeparator(at[1])) return at;
    ++at;
  }
  return nullptr;
}

// What a number out of a double's range comes to: the text names one above the largest or one below
// the smallest.
enum class Base { kDecimal, kHexadecimal };
double OutOfRange(std::string_view number, Base base) {
  const size_t e = number.find_first_of(base == Base::kDecimal ? "eE" : "pP");
  int64_t exponent = 0;
  if (e != number.npos) exponent = LeadingInteger(number.substr(e + 1));
  exponent = std::clamp<int64_t>(exponent, -1000000000, 1000000000);
  const std::string_view mantissa = number.substr(0, e);
  const size_t point = std::min(mantissa.find('.'), mantissa.size());
  const size_t first = mantissa.find_first_not_of("0.");
  if (first == mantissa.npos) return 0;
  const int64_t scale = base == Base::kDecimal ? 1 : 4;
  exponent += scale * (static_cast<int64_t>(point) - static_cast<int64_t>(first));
  return exponent > 0 ? std::numeric_limits<double>::infinity() : 0;
}

// Eight digits at once: the value of each two, then of each four, then of all.
uint32_t EightDigits(uint64_t ascii) {
  ascii -= 0x3030303030303030u;
  ascii = ascii * 10 + (ascii >> 8);
  ascii = ((ascii & 0x00FF00FF00FF00FFu) * 0x640001u) >> 16 & 0x0000FFFF0000FFFFu;
  return static_cast<uint32_t>((ascii * 0x271000000001u) >> 32);
}

bool AreEightDigits(uint64_t ascii) {
  const uint64_t above = ascii + 0x4646464646464646u;
  const uint64_t below = ascii - 0x3030303030303030u;
  return ((above | below) & 0x8080808080808080u) == 0;
}

// Appends the digits from `at` on to *value, which may wrap round. Where they end.
inline const char* TakeDigits(const char* at, const char* end, uint64_t* value) {
  uint64_t digits = *value;
  if constexpr (std::endian::native == std::endian::little) {
    while (end - at >= 8) {
      uint64_t ascii = 0;
      std::memcpy(&ascii, at, sizeof ascii);
      if (!AreEightDigits(ascii)) break;
      digits = digits * 100000000 + EightDigits(ascii);
      at += 8;
    }
  }
  for (; at != end && IsDigit(*at); ++at) digits = digits * 10 + static_cast<uint64_t>(*at - '0');
  *value = digits;
  return at;
}

constexpr double kPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8, 1e9,
                              1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18};

// A number of digits and at most a point whose digits make an integer below 2^53: the quotient of
// that and an exact power of ten is the nearest double. The end of it; null where the number has
// another form.
const char* ReadPlainNumber(const char* at, const char* end, double* value) {
  constexpr ptrdiff_t kMostDigits = 18;  // leading zeros included
  constexpr uint64_t kLimit = uint64_t{1} << 53;
  const bool negative = at != end && *at == '-';
  if (negative) ++at;
  uint64_t digits = 0;
  const char* const first = at;
  at = TakeDigits(at, end, &digits);
  ptrdiff_t count = at - first;
  ptrdiff_t decimals = 0;
  if (at != end && *at == '.') {
    const char* const point = at;
    at = TakeDigits(at + 1, end, &digits);
    decimals = at - point - 1;
    count += decimals;
  }
  // Digits beyond the limit wrapped round, but the count tells.
  if (count == 0 || count > kMostDigits || digits >= kLimit) return nullptr;
  if (at != end && !IsSeparator(*at)) return nullptr;
  double magnitude = static_cast<double>(digits);
  if (decimals > 0) magnitude /= kPowers[decimals];
  *value = negative ? -magnitude : magnitude;
  return at;
}

const char* SkipSpaces(const char* at, const char* end) {
  while (at != end && IsSpace(*at)) ++at;
  return at;
}

int32_t To32(int64_t value) {
  return static_cast<int32_t>(std::clamp<int64_t>(value, std::numeric_limits<int32_t>::min(),
                                                  std::numeric_limits<int32_t>::max()));
}

}  // namespace

char QuoteFor(std::u16string_view text) {
  if (text.find(u"\r\n") != text.npos) return 0;
  for (const char quote : {'"', '\''}) {
    size_t at = 0;
    const auto ends_early = [&] {
      return at + 1 < text.size() && text[at + 1] < 0x80 &&
             IsSeparator(static_cast<char>(text[at + 1]));
    };
    while ((at = text.find(static_cast<char16_t>(quote), at)) != text.npos && !ends_early()) ++at;
    if (at == text.npos) return quote;
  }
  return 0;
}

void Writer::Integer(int64_t value) {
  AppendInteger(&text_, value);
  text_.push_back(' ');
}

void Writer::Number(double value) {
  if (!std::isfinite(value)) wrote_non_finite_ = true;
  AppendNumberText(&text_, value, kDigits);
  text_.push_back(' ');
}

void Writer::IntegerItem(int64_t value) {
  text_.push_back('\'');
  AppendInteger(&text_, value);
  text_.append("' ");
}

void Writer::NumberItem(double value) {
  text_.push_back('\'');
  Number(value);
  text_.back() = '\'';
  text_.push_back(' ');
}

void Writer::Text(std::u16string_view text) {
  const char fitting = QuoteFor(text);
  const char quote = fitting != 0 ? fitting : '"';
  text_.push_back(quote);
  AppendPacked(&text_, text);
  text_.push_back(quote);
  text_.push_back(' ');
}

void Writer::EscapedText(std::u16string_view text) {
  Text(EscapeText(text));
}

void Writer::List(const std::vector<int32_t>& values) {
  text_.push_back('"');
  for (const int32_t value : values) Integer(value);
  text_.append("\" ");
}

void Writer::Points(const std::vector<P2>& points) {
  Raw("\"");
  for (const P2& point : points) {
    Raw("'");
    Number(point.x);
    Number(point.y);
    Raw("' ");
  }
  Raw("\"");
}

void Writer::EndLine() {
  text_.append("\r\n");
  if (drain_ && text_.size() >= kPiece) HandOver();
}

bool Writer::Finish() {
  if (drain_) HandOver();
  return !stopped_;
}

void Writer::HandOver() {
  if (!stopped_ && !text_.empty()) stopped_ = !drain_(text_);
  text_.clear();
}

bool Tokens::SkipSeparators() {
  while (at_ != end_ && IsSeparator(*at_)) ++at_;
  return at_ != end_;
}

bool Tokens::Next(std::string_view* token) {
  if (!SkipSeparators()) return false;
  const char* first = at_;
  if (IsQuote(*first)) {
    bool& none_left = *first == '"' ? no_double_ : no_single_;
    const char* close = none_left ? nullptr : FindClosingQuote(first + 1, end_, *first);
    if (close) {
      at_ = close + 1;
      *token = {first + 1, static_cast<size_t>(close - first - 1)};
      return true;
    }
    none_left = true;
  }
  at_ = FindSeparator(first, end_);
  *token = {first, static_cast<size_t>(at_ - first)};
  return true;
}

void Tokens::Skip() {
  std::string_view token;
  Next(&token);
}

void Tokens::Integer(int32_t& value) {
  if (!SkipSeparators()) return;
  if (IsQuote(*at_) || IsSpace(*at_)) {
    std::string_view token;
    if (Next(&token)) value = To32(LeadingInteger(token));
    return;
  }
  value = To32(LeadingInteger({at_, static_cast<size_t>(end_ - at_)}, &at_));
  at_ = FindSeparator(at_, end_);
}

void Tokens::Number(double& value) {
  if (!SkipSeparators()) return;
  if (IsQuote(*at_) || IsSpace(*at_)) {
    std::string_view token;
    if (Next(&token)) value = LeadingNumber(token);
    return;
  }
  value = LeadingNumber({at_, static_cast<size_t>(end_ - at_)}, &at_);
  at_ = FindSeparator(at_, end_);
}

void Tokens::Text(std::u16string& text) {
  std::string_view token;
  if (Next(&token)) text = Unpack(token);
}

void Tokens::List(std::vector<int32_t>& values) {
  std::string_view token;
  if (!Next(&token)) return;
  values.clear();
  for (Tokens items(token); items.SkipSeparators();) {
    values.push_back(0);
    items.Integer(values.back());
  }
}

void Tokens::Points(std::vector<P2>& points) {
  Group([&](Tokens& items) {
    for (std::string_view token; items.Next(&token);) {
      Tokens numbers(token);
      P2& point = points.emplace_back();
      numbers.Number(point.x);
      numbers.Number(point.y);
    }
  });
}

bool Lines::AtEnd() {
  while (rest_.empty()) {
    if (!source_ || !source_(&rest_)) return true;
  }
  return false;
}

std::string_view Lines::Next() {
  if (AtEnd()) return {};
  ++taken_;
  std::string_view line = rest_;
  size_t used = rest_.size();
  for (const char* at = rest_.data(); used > 0; ++at) {
    const auto left = static_cast<size_t>(rest_.data() + rest_.size() - at);
    at = static_cast<const char*>(std::memchr(at, '\n', left));
    if (!at) break;
    const auto before = static_cast<size_t>(at - rest_.data());
    if (before > 0 && at[-1] == '\r') {
      line = rest_.substr(0, before - 1);
      used = before + 1;
      break;
    }
  }
  rest_.remove_prefix(used);
  unread_ -= std::min(used, unread_);
  return line;
}

double LeadingNumber(std::string_view text, const char** stop) {
  const char* const end = text.data() + text.size();
  double plain = 0;
  if (const char* after = ReadPlainNumber(text.data(), end, &plain)) {
    if (stop) *stop = after;
    return plain;
  }
  const char* at = SkipSpaces(text.data(), end);
  if (stop) *stop = text.data();
  if (at == end) return 0;
  const bool negative = *at == '-';
  if (negative || *at == '+') ++at;
  if (at == end || *at == '-') return 0;

  double value = 0;
  Base base = Base::kDecimal;
  std::from_chars_result read{at, std::errc::invalid_argument};
  if (end - at > 2 && at[0] == '0' && (at[1] == 'x' || at[1] == 'X') && at[2] != '-') {
    base = Base::kHexadecimal;
    read = std::from_chars(at + 2, end, value, std::chars_format::hex);
  }
  if (read.ec == std::errc::invalid_argument) {
    base = Base::kDecimal;
    read = std::from_chars(at, end, value);
  }
  if (read.ec == std::errc::invalid_argument) return 0;
  if (read.ec == std::errc::result_out_of_range) {
    value = OutOfRange({at, static_cast<size_t>(read.ptr - at)}, base);
  }
  if (stop) *stop = read.ptr;
  return negative ? -value : value;
}

int64_t LeadingInteger(std::string_view text, const char** stop) {
  const char* const end = text.data() + text.size();
  const char* at = SkipSpaces(text.data(), end);
  if (stop) *stop = text.data();
  if (at == end) return 0;
  const bool negative = *at == '-';
  if (negative || *at == '+') ++at;
  uint64_t value = 0;
  constexpr uint64_t kMost = std::numeric_limits<int64_t>::max();
  for (; at != end && IsDigit(*at); ++at) {
    value =
        value > kMost / 10 ? kMost : std::min(value * 10 + static_cast<uint64_t>(*at - '0'), kMost);
  }
  if (stop) *stop = at;
  return negative ? -static_cast<int64_t>(value) : static_cast<int64_t>(value);
}

}  // namespace kerno::ipx
