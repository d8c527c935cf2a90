// What the controls say beside their captions: hints under the pointer, and names for assistive
// technology.
#pragma once

#include <string>

#include "platform/win32/windows_api.h"

namespace kerno {

// A tooltip window with the hint of each control of `dialog` that has one, and of the status, whose
// hint comes by ChangeHint. The dialog owns it.
HWND AddControlHints(HINSTANCE instance, HWND dialog);

// Does nothing as long as there is no tooltip window.
void ChangeHint(HWND hints, HWND dialog, HWND control, std::wstring text);

// Tells the system the names of the controls that have no caption to be named by. Systems without
// that service go by the labels.
void AddControlNames(HWND dialog);

}  // namespace kerno
