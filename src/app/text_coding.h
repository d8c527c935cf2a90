// Texts in the encodings that Japanese and western files come in, read strictly: what stands for no
// character is an error.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/status.h"

namespace kerno {

enum class TextCoding {
  kUtf8,
  kUtf16Le,      // units of two bytes, the low one first
  kUtf16Be,      // the high one first
  kCodePage932,  // Shift_JIS with the vendor's extensions
  kEucJp,        // the same characters of JIS X 0208, by rows and columns
  kCodePage1252,
  kLatin1,  // ISO 8859-1: every byte is the character of that number
};

// The name that users are shown, and the coding of a name, case ignored ("Shift_JIS", "cp932").
const char* CodingName(TextCoding coding);
std::optional<TextCoding> FindCoding(std::string_view name);
// The names of all, in the order above: "UTF-8", the separator, "UTF-16LE", ...
std::string CodingNames(std::string_view separator);

// The text of bytes, a mark at the start left out. `name` says in a failure whose bytes they are;
// the reason names the offset of the first offending byte. *text is set on success only.
[[nodiscard]] Status DecodeAs(TextCoding coding, std::string_view bytes, std::u16string_view name,
                              std::u16string* text);

// Which of the Japanese codings bytes are that are not UTF-8; nothing where they are none, or look
// like a western text. Of bytes that could be both, the coding is taken that gives fewer half-width
// kana, and EUC-JP where code page 932 gives some and that none.
std::optional<TextCoding> GuessCoding(std::string_view bytes);

}  // namespace kerno
