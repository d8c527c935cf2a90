// Text helpers: UTF-8 and UTF-16, file extensions, the escaped form of one-line records.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace kerno {

// UTF-8 to UTF-16 and back. Utf8ToUtf16 answers nothing for text that is not UTF-8 and then puts
// the offset of the first offending byte into *bad_offset, when given. A lone surrogate becomes
// U+FFFD in UTF-8.
std::optional<std::u16string> Utf8ToUtf16(std::string_view utf8, size_t* bad_offset = nullptr);
std::string Utf16ToUtf8(std::u16string_view utf16);

// Like Utf8ToUtf16, each offending byte becoming U+FFFD: for texts of the system that are only
// shown.
std::u16string Utf8ToUtf16Lossy(std::string_view utf8);

// A path as text, and text as a path.
std::u16string PathText(const std::filesystem::path& path);
std::filesystem::path TextPath(std::u16string_view text);

// The character that starts at unit `*position`, which moves behind it: a surrogate pair is one
// character, a lone surrogate stands for itself.
char32_t NextCharacter(std::u16string_view text, size_t* position);
void AppendCharacter(std::u16string* text, char32_t character);

// Whether a character would show nothing in a line of text, or turn the direction of what follows.
bool IsUnseen(char32_t character);
// Whether it changes the order in which the characters around it are shown (UAX #9).
bool IsDirectionControl(char32_t character);
// "U+" and at least four digits.
std::string CodeOf(char32_t character);

// Bytes in code page 932, best-fit mappings included; "_" for each unit without mapping.
std::string ToShiftJis(std::u16string_view text);

// Upper-case ASCII letters as lower-case ones; everything else as it is.
std::u16string AsciiLower(std::u16string_view text);

// The text after the last "." of a file name, "" where there is none; compared exactly by callers.
std::u16string Extension(std::u16string_view path);

// The text without its blanks (U+0020).
std::u16string StripSpaces(std::u16string_view text);

// The escaped form of a text for one-line records: tab, line feed, carriage return, quotes, comma
// and backslash become \t, \n, \r, \x22, \x27, \x2c and \\. There is no way back.
std::u16string EscapeText(std::u16string_view text);

// The quote character, the text unchanged, the quote character.
std::u16string QuoteText(std::u16string_view text, char16_t quote);

// The text without its outer quotes when it has at least two units and the first and last are the
// same single or double quote; otherwise the text.
std::u16string_view Unquote(std::u16string_view text);

}  // namespace kerno
