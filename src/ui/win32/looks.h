// The colours in which the window is drawn: the system's own, or dark ones where the user wants
// programs dark. A high-contrast scheme is always the system's own.
#pragma once

#include <optional>

#include "platform/win32/windows_api.h"

namespace kerno {

// Asks the system again what the user wants. Whether that has changed.
bool LearnLooks();
bool IsDark();

// As GetSysColor and GetSysColorBrush.
COLORREF LookColor(int part);
HBRUSH LookBrush(int part);

// Prepares a window and all that stands in it, again after each change of the looks.
void ApplyLooks(HWND window);

void ApplyLooksToHints(HWND hints);

// What the procedure of a dialog asks first: its answer to the message where colours are all that
// this is about.
std::optional<INT_PTR> AnswerInLooks(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam);

// Frames a field red, or as usual.
void MarkFault(HWND field, bool at_fault);

// Draws a button in dark colours, for the notification NM_CUSTOMDRAW; whether it was drawn.
bool DrawDarkButton(const NMHDR& header);

// Draws a button as a word that can be followed, the same way.
bool DrawLinkButton(const NMHDR& header);

// The answer to WM_CTLCOLOR*: the colours of a control, and the brush of its ground.
HBRUSH ControlBrush(UINT message, HDC dc);

}  // namespace kerno
