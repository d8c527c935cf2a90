// Texts of a server, made harmless for a terminal or a message box.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kerno {

// UTF-8 as one line of at most `most` characters, "…" at the end where it was cut: control
// characters and those that turn the direction of text become blanks, offending bytes U+FFFD.
std::u16string ShownText(std::string_view utf8, size_t most);

// The same of the first line that is not blank.
std::u16string FirstShownLine(std::string_view utf8, size_t most);

}  // namespace kerno
