// The folders in which a user's programs are looked for, in one text with ';' between them.
//
// Everything else in the text stays as it is, empty entries and unusual spellings too: what the
// user has there was put there by others. Folders are compared without case, without a backslash at
// the end and without quotes.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kerno {

// The longest value that the system passes on to programs, in UTF-16 units.
inline constexpr size_t kLongestSearchPath = 32766;

bool HasFolder(std::u16string_view path, std::u16string_view folder);

// Whether an entry can say the folder's name: one with a '"' or a '%' would be read as another.
bool CanBeEntry(std::u16string_view folder);

// The path with the folder as its last entry. Nothing where the folder cannot be an entry or the
// path would become too long.
std::optional<std::u16string> WithFolder(std::u16string_view path, std::u16string_view folder);

// The path without its last entry of this folder: WithoutFolder(*WithFolder(path, folder), folder)
// is `path` again, to the unit.
std::u16string WithoutFolder(std::u16string_view path, std::u16string_view folder);

}  // namespace kerno
