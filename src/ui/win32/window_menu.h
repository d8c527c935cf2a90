// The menu of the window: made of the table of its commands, in the current language, and drawn in
// dark colours where the system has no way to do so.
#pragma once

#include "app/dialog_view.h"
#include "platform/win32/windows_api.h"

namespace kerno {

HMENU MakeWindowMenu();

// Sets the captions again, after a change of the language.
void ShowMenuCaptions(HMENU menu);

// In Cut, what is Classic's alone is grey.
void EnableMenu(HMENU menu, WindowMode mode);

// Lets the owner draw the items, or the system, as the looks are now.
void ApplyLooksToMenu(HMENU menu);

// The answers of the menu's owner.
void MeasureMenuItem(HMENU menu, HWND owner, MEASUREITEMSTRUCT& item);
void DrawMenuItem(HWND owner, const DRAWITEMSTRUCT& item);

}  // namespace kerno
