// UTF-16 on the inside, UTF-8 and Unicode case folding of Fontconfig on the outside.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kerno {

// The character that starts at unit `*position`, which moves past it: a surrogate pair is one
// character, a lone surrogate stands for itself.
char32_t NextUtf16Character(std::u16string_view text, size_t* position);

// Text of UTF-8; decoding stops at the first byte that is not UTF-8.
std::u16string FromFontconfigText(std::string_view utf8);
std::string ToFontconfigText(std::u16string_view text);

// What two face names have in common when the system takes them for the same name: their first
// `units` units, case folded.
std::string FaceNameKey(std::u16string_view name, size_t units);

}  // namespace kerno
