// The text form in which registry editors export keys ("Windows Registry Editor Version 5.00"):
//
//   [HKEY_CURRENT_USER\Software\Name]
//   @="default value"
//   "name"="text with \\ and \" escaped"
//   "number"=dword:0000000a
//   "other"=hex(2):25,00,00,00
//
// where other data goes on in the next line after a backslash at the end.
//
// Lines are executed in order, as an import does: later ones win, "name"=- and [-key] delete.
// Everything that is not written stays as it stands, damaged lines too. A change that would give
// other lines another meaning (a quote that is opened and never closed may meet its end in what
// follows) is refused: the answer is kFailed and the text stays.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/registry.h"

namespace kerno::posix {

inline constexpr std::u16string_view kRegistryHeader = u"Windows Registry Editor Version 5.00";

// Whether the text is such a file: its first line is the header, of this or the older kind.
bool IsRegistryText(std::u16string_view text);

// `key` begins with the name of its root.
RegistryOutcome FindRegistryValue(std::u16string_view text, std::u16string_view key,
                                  std::u16string_view name, RegistryValue* value);

// Writes a value of type kString or kDword, adding the key when it is missing.
RegistryOutcome SetRegistryText(std::u16string* text, std::u16string_view key,
                                std::u16string_view name, const RegistryValue& value);

RegistryOutcome RemoveRegistryText(std::u16string* text, std::u16string_view key,
                                   std::u16string_view name);
// kFailed while keys below it exist, too.
RegistryOutcome RemoveRegistryKeyText(std::u16string* text, std::u16string_view key);

}  // namespace kerno::posix
