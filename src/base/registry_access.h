// The current user's registry, read and written value by value.
//
// Key paths have "\" between their names and no root. Nothing is held open between calls. The
// reason of a failure is the message that the settings store keeps: a prefix of fixed width, the
// key path, "\[", the value's name and "]".
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/status.h"

namespace kerno {

// Fail when the key or the value is missing or the value is of another type; *value then stays.
Status ReadUserDword(std::u16string_view key, std::u16string_view name, int32_t* value);
Status ReadUserString(std::u16string_view key, std::u16string_view name, std::u16string* value);

enum class IfHeld { kWait, kFail };

// Wait while another process holds the registry, as long as the settings may be waited for.
Status WriteUserDword(std::u16string_view key, std::u16string_view name, int32_t value);
Status WriteUserString(std::u16string_view key, std::u16string_view name, std::u16string_view value,
                       IfHeld if_held = IfHeld::kWait);
Status DeleteUserValue(std::u16string_view key, std::u16string_view name);
Status DeleteUserKey(std::u16string_view key);

}  // namespace kerno
