#include "app/height_text.h"

#include <algorithm>
#include <limits>

#include "base/number_text.h"

namespace kerno {

namespace {

bool IsBlank(char16_t c) {
  return c == u' ' || (c >= u'\t' && c <= u'\r');
}

}  // namespace

int32_t HeightNumber(std::u16string_view text) {
  size_t at = 0;
  while (at < text.size() && IsBlank(text[at])) ++at;
  const bool negative = at < text.size() && text[at] == u'-';
  if (at < text.size() && (text[at] == u'-' || text[at] == u'+')) ++at;
  constexpr int64_t kLimit = std::numeric_limits<int32_t>::max();
  int64_t number = 0;
  for (; at < text.size() && text[at] >= u'0' && text[at] <= u'9'; ++at) {
    number = std::min(number * 10 + (text[at] - u'0'), kLimit + 1);
  }
  return static_cast<int32_t>(negative ? -number : std::min(number, kLimit));
}

bool IsHeightNumber(std::u16string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  if (!text.empty() && (text.front() == u'-' || text.front() == u'+')) text.remove_prefix(1);
  return !text.empty() && text.find_first_not_of(u"0123456789") == std::u16string_view::npos;
}

std::u16string SteppedHeight(std::u16string_view text, int32_t steps) {
  const int64_t wanted = static_cast<int64_t>(HeightNumber(text)) + steps;
  std::string digits;
  AppendInteger(&digits, std::clamp<int64_t>(wanted, kLowestHeight, kHighestHeight));
  return {digits.begin(), digits.end()};
}

}  // namespace kerno
