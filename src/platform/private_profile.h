// Private profiles: INI files of sections with "key=value" lines.
//
// Names of sections and keys are compared without case and without blanks around them. Of sections
// of one name only the first counts, and in it the first line of a key. A line that begins with ";"
// is a comment. A key may hold "=": the line "a=b=c" gives "b=c" for the key "a" and "c" for "a=b".
// Blanks around a value do not belong to it, nor does one pair of equal quotes.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/status.h"

namespace kerno {

// The value of a key, cut after `most` units; nothing when the file, the section or the key is
// missing, and when the file cannot be read, which *status tells where the system does.
std::optional<std::u16string> ReadProfileString(const std::filesystem::path& file,
                                                std::u16string_view section,
                                                std::u16string_view key, size_t most,
                                                Status* status = nullptr);

// A value as an integer: an optional sign, a prefix 0x, 0o or 0b for other radices, digits up to
// the first other character, reduced to 32 bits; 0 when it does not begin with a digit.
int32_t ParseProfileInt(std::u16string_view value);

// One line to write; without a value the key is removed. Section and key hold at least one
// character that is not a blank, no part holds a line break or a NUL, a key no "[" or ";" at its
// start. A key "a=b" may be refused where a key "a" stands already.
struct ProfileEdit {
  std::u16string section;
  std::u16string key;
  std::optional<std::u16string> value;
};

// Writes lines and touches nothing else of the file, which is created when missing. All of them are
// written, or none. Never waits: kSharingViolation when another process holds the file.
Status WriteProfile(const std::filesystem::path& file, const std::vector<ProfileEdit>& edits);

}  // namespace kerno
