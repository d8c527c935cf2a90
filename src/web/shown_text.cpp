#include "web/shown_text.h"

#include "base/text.h"

namespace kerno {
namespace {

constexpr size_t kMostBytesOfCharacter = 4;

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool IsHarmful(char32_t c) {
  return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x2028 || c == 0x2029 ||
         (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

}  // namespace

std::u16string ShownText(std::string_view utf8, size_t most) {
  const std::u16string text = Utf8ToUtf16Lossy(utf8.substr(0, (most + 1) * kMostBytesOfCharacter));
  std::u16string shown;
  size_t count = 0;
  for (size_t at = 0; at < text.size(); ++count) {
    if (count == most) {
      shown.push_back(u'…');
      break;
    }
    const char32_t c = NextCharacter(text, &at);
    AppendCharacter(&shown, IsHarmful(c) ? U' ' : c);
  }
  return shown;
}

std::u16string FirstShownLine(std::string_view utf8, size_t most) {
  if (utf8.starts_with("\xEF\xBB\xBF")) utf8.remove_prefix(3);
  while (!utf8.empty() && IsBlank(utf8.front())) utf8.remove_prefix(1);
  utf8 = utf8.substr(0, utf8.find_first_of("\r\n"));
  while (!utf8.empty() && IsBlank(utf8.back())) utf8.remove_suffix(1);
  return ShownText(utf8, most);
}

}  // namespace kerno
