// What the controls say beside their captions: hints under the pointer, and names for assistive
// technology.
#pragma once

#include <string>
#include <string_view>

#include "platform/win32/windows_api.h"

namespace kerno {

// A tooltip window, which `owner` owns.
HWND MakeHints(HINSTANCE instance, HWND owner);

// The hint of a control that stands in `parent`, in the place of the one before.
void ShowHint(HWND hints, HWND parent, HWND control, std::u16string_view text);

// Tells the system the name of a control that has no caption to be named by. Systems without that
// service go by the labels.
void NameControl(HWND control, std::u16string_view name);

}  // namespace kerno
