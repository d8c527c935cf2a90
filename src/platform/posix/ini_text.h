// The text of an INI file, read and edited by the rules of platform/private_profile.h.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kerno::posix {

// The value as the reader sees it, a part of `text`.
std::optional<std::u16string_view> FindIniValue(std::u16string_view text,
                                                std::u16string_view section,
                                                std::u16string_view key);

// Replaces the value after the key's "=", or adds a line at the end of the section, or a section
// at the end of the text. New lines end as the text's first line does (CR LF in an empty text).
void SetIniValue(std::u16string* text, std::u16string_view section, std::u16string_view key,
                 std::u16string_view value);

// Removes the key's line; without effect when there is none.
void RemoveIniValue(std::u16string* text, std::u16string_view section, std::u16string_view key);

}  // namespace kerno::posix
