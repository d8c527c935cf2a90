#include "app/height_text.h"

#include <algorithm>
#include <limits>

#include "base/number_text.h"

namespace kerno {

int32_t HeightNumber(std::u16string_view text) {
  size_t at = 0;
  while (at < text.size() && (text[at] == u' ' || (text[at] >= u'\t' && text[at] <= u'\r'))) ++at;
  const bool negative = at < text.size() && text[at] == u'-';
  if (at < text.size() && (text[at] == u'-' || text[at] == u'+')) ++at;
  constexpr int64_t kLimit = std::numeric_limits<int32_t>::max();
  int64_t number = 0;
  for (; at < text.size() && text[at] >= u'0' && text[at] <= u'9'; ++at) {
    number = std::min(number * 10 + (text[at] - u'0'), kLimit + 1);
  }
  return static_cast<int32_t>(negative ? -number : std::min(number, kLimit));
}

std::u16string SteppedHeight(std::u16string_view text, int32_t steps) {
  const int64_t wanted = static_cast<int64_t>(HeightNumber(text)) + steps;
  std::string digits;
  AppendInteger(&digits, std::clamp<int64_t>(wanted, kLowestHeight, kHighestHeight));
  return {digits.begin(), digits.end()};
}

}  // namespace kerno
