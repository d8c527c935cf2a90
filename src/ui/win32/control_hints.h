// What the controls say beside their captions: hints under the pointer, and names for assistive
// technology.
#pragma once

#include "platform/win32/windows_api.h"

namespace kerno {

// A tooltip window with the hint of each control of `dialog` that has one. The dialog owns it.
HWND AddControlHints(HINSTANCE instance, HWND dialog);

// Tells the system the names of the controls that have no caption to be named by. Systems without
// that service go by the labels.
void AddControlNames(HWND dialog);

}  // namespace kerno
