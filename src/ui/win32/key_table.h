// Keys of the tables of controls and menus as the system's accelerators.
#pragma once

#include <string_view>
#include <vector>

#include "platform/win32/windows_api.h"

namespace kerno {

// Appends the keys of "Ctrl+O", "Alt+B", "F1", "Ctrl++", which press `command`. A sign that stands
// on two keys has both; nothing for an empty text.
void AppendKeys(std::u16string_view shortcut, int command, std::vector<ACCEL>* keys);

// The character of a key of the preview, an arrow for its key (PreviewKeys).
char16_t NameOfKey(WPARAM key);

}  // namespace kerno
