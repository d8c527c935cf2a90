#include "platform/win32/wide_text.h"

#include <algorithm>

#include "platform/win32/windows_api.h"

namespace kerno {

static_assert(sizeof(wchar_t) == sizeof(char16_t));

std::wstring ToWide(std::u16string_view text) {
  return {text.begin(), text.end()};
}

std::u16string FromWide(std::wstring_view text) {
  return {text.begin(), text.end()};
}

std::string ToUtf8(std::wstring_view text) {
  const auto length = static_cast<int>(text.size());
  std::string utf8(text.size() * 3, '\0');
  const int written = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, utf8.data(),
                                          static_cast<int>(utf8.size()), nullptr, nullptr);
  utf8.resize(static_cast<size_t>(written));
  return utf8;
}

std::u16string FromWideBuffer(const wchar_t* buffer, size_t capacity) {
  return {buffer, std::find(buffer, buffer + capacity, L'\0')};
}

}  // namespace kerno
