// Printing a drawing for a machine in true size.
#pragma once

#include <string>
#include <string_view>

#include "drawing/drawing.h"
#include "platform/win32/windows_api.h"

namespace kerno {

// Draws the paths as thin lines in true size, from the upper left corner of what can be printed on.
void DrawInTrueSize(HDC printer, const Drawing& drawing);

// In millimetres.
struct PaperSize {
  double width = 0, height = 0;
};
PaperSize SizeOnPaper(const Drawing& drawing);
// Of what can be printed on.
PaperSize PageOf(HDC printer);
// "210.0 × 297.0 mm"
std::u16string DescribeSize(const PaperSize& size);

// Asks for a printer, a wide page being proposed where it says so; its context is the caller's.
// Null where none was chosen; *failed says whether that was the system's fault.
HDC AskForPrinter(HWND owner, bool wide, bool* failed);

// Whether the page was printed.
bool PrintPage(HDC printer, const Drawing& drawing, std::u16string_view title);

}  // namespace kerno
