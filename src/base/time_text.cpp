#include "base/time_text.h"

namespace kerno {
namespace {

void AppendPadded(std::u16string* text, int value, size_t width) {
  std::u16string digits;
  for (int rest = value < 0 ? 0 : value; rest > 0; rest /= 10) {
    digits.insert(digits.begin(), static_cast<char16_t>(u'0' + rest % 10));
  }
  if (digits.size() < width) text->append(width - digits.size(), u'0');
  text->append(digits);
}

}  // namespace

std::u16string FormatTime(const LocalTime& time, std::u16string_view pattern) {
  std::u16string text;
  for (size_t i = 0; i < pattern.size(); ++i) {
    const char16_t field = pattern[i] == u'%' && i + 1 < pattern.size() ? pattern[i + 1] : u'\0';
    const int* value = field == u'Y'   ? &time.year
                       : field == u'm' ? &time.month
                       : field == u'd' ? &time.day
                       : field == u'H' ? &time.hour
                       : field == u'M' ? &time.minute
                       : field == u'S' ? &time.second
                                       : nullptr;
    if (!value) {
      text.push_back(pattern[i]);
      continue;
    }
    AppendPadded(&text, *value, field == u'Y' ? 4 : 2);
    ++i;
  }
  return text;
}

}  // namespace kerno
