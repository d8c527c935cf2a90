// The core's UTF-16 and the system's wide characters are the same units under two names.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kerno {

std::wstring ToWide(std::u16string_view text);
std::u16string FromWide(std::wstring_view text);

// In UTF-8; a lone surrogate becomes U+FFFD.
std::string ToUtf8(std::wstring_view text);

// The text of a buffer that the system filled, up to its first NUL.
std::u16string FromWideBuffer(const wchar_t* buffer, size_t capacity);

}  // namespace kerno
