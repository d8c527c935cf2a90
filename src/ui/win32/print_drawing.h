// Printing a drawing for a machine in true size.
#pragma once

#include <string>
#include <string_view>

#include "drawing/drawing.h"
#include "platform/win32/windows_api.h"

namespace kerno {

// Draws the paths as hairlines in true size, in the middle of what can be printed on the page.
void DrawInTrueSize(HDC printer, const Drawing& drawing);

// The size of what can be printed on the page, in millimetres.
struct PageSize {
  double width = 0, height = 0;
};
PageSize PageOf(HDC printer);
bool FitsOn(const PageSize& page, const Drawing& drawing);

// Asks for a printer; its context is the caller's. Null where none was chosen; *failed says
// whether that was the system's fault.
HDC AskForPrinter(HWND owner, bool* failed);

// Whether the page was printed.
bool PrintPage(HDC printer, const Drawing& drawing, std::u16string_view title);

}  // namespace kerno
