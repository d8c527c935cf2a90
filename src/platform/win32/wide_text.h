// The core's UTF-16 and the system's wide characters are the same units under two names.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kerno {

// Whether a unit is the half of a pair that stands for one character.
constexpr bool IsSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit < 0xE000;
}

std::wstring ToWide(std::u16string_view text);
std::u16string FromWide(std::wstring_view text);

// In UTF-8; a lone surrogate becomes U+FFFD.
std::string ToUtf8(std::wstring_view text);

// The text of a buffer that the system filled, up to its first NUL.
std::u16string FromWideBuffer(const wchar_t* buffer, size_t capacity);

}  // namespace kerno
