// Conversion between UTF-16 and the 8-bit code page 932 (Shift_JIS with the vendor's extensions),
// which the program takes as the system's 8-bit code page outside the desktop system.
#pragma once

#include <string>
#include <string_view>

namespace kerno {

// Bytes of `text` in code page 932, best-fit mappings included; a unit without mapping becomes
// `default_byte` (one for each unit), and *used_default, when given, tells whether one did.
std::string EncodeCodePage932(std::u16string_view text, char default_byte,
                              bool* used_default = nullptr);

// Text of bytes in code page 932. A byte that starts nothing valid becomes U+30FB, and so does a
// pair of a lead and a trail byte that has no character.
std::u16string DecodeCodePage932(std::string_view bytes);

}  // namespace kerno
