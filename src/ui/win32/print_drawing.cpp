#include "ui/win32/print_drawing.h"

#include <commdlg.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <vector>

#include "drawing/flatten.h"
#include "drawing/measures.h"
#include "platform/win32/wide_text.h"

namespace kerno {
namespace {

constexpr double kChordError = 0.01;  // millimetres, less than a printer's dot
constexpr double kThinnest = 0.1;     // millimetres, of a line

double MillimetresPerUnit(const Drawing& drawing) {
  return drawing.unit == LengthUnit::kInch ? kMillimetresPerInch : 1;
}

void AddPath(HDC printer, const Path& path, const std::vector<POINT>& points) {
  if (points.empty()) return;
  MoveToEx(printer, points[0].x, points[0].y, nullptr);
  PolylineTo(printer, points.data() + 1, static_cast<DWORD>(points.size() - 1));
  if (path.closed) CloseFigure(printer);
}

}  // namespace

PaperSize PageOf(HDC printer) {
  return {static_cast<double>(GetDeviceCaps(printer, HORZSIZE)),
          static_cast<double>(GetDeviceCaps(printer, VERTSIZE))};
}

PaperSize SizeOnPaper(const Drawing& drawing) {
  const Box2 picture = PictureOf(drawing);
  const double scale = MillimetresPerUnit(drawing);
  return {(picture.max.x - picture.min.x) * scale, (picture.max.y - picture.min.y) * scale};
}

std::u16string DescribeSize(const PaperSize& size) {
  wchar_t text[64];
  std::swprintf(text, std::size(text), L"%.1f × %.1f mm", size.width, size.height);
  return FromWide(text);
}

void DrawInTrueSize(HDC printer, const Drawing& drawing) {
  const double scale = MillimetresPerUnit(drawing) / kMillimetresPerInch;  // inches of a unit
  const double across = GetDeviceCaps(printer, LOGPIXELSX);
  const double up = GetDeviceCaps(printer, LOGPIXELSY);
  const Box2 picture = PictureOf(drawing);
  const int width = std::max(1, static_cast<int>(kThinnest / kMillimetresPerInch * across));
  const HPEN pen = CreatePen(PS_SOLID, width, RGB(0, 0, 0));
  const HGDIOBJ before = SelectObject(printer, pen);
  const double tolerance = kChordError / MillimetresPerUnit(drawing);
  std::vector<P2> chords;
  std::vector<POINT> points;
  for (const PlacedShape& placed : drawing.placed) {
    BeginPath(printer);
    for (const ShapePath& part : drawing.shapes[placed.shape]) {
      FlattenPath(part.path, tolerance, &chords);
      points.clear();
      for (const P2& p : chords) {
        points.push_back({std::lround((p.x + placed.at.x - picture.min.x) * scale * across),
                          std::lround((picture.max.y - p.y - placed.at.y) * scale * up)});
      }
      AddPath(printer, part.path, points);
    }
    EndPath(printer);
    StrokePath(printer);
  }
  SelectObject(printer, before);
  DeleteObject(pen);
}

HDC AskForPrinter(HWND owner, bool wide, bool* failed) {
  PRINTDLGW question{};
  question.lStructSize = sizeof question;
  question.Flags = PD_RETURNDEFAULT;
  *failed = PrintDlgW(&question) == FALSE;
  if (*failed) return nullptr;
  auto* const mode = static_cast<DEVMODEW*>(GlobalLock(question.hDevMode));
  if (mode != nullptr && wide) {
    mode->dmFields |= DM_ORIENTATION;
    mode->dmOrientation = DMORIENT_LANDSCAPE;
  }
  GlobalUnlock(question.hDevMode);
  question.hwndOwner = owner;
  question.Flags = PD_RETURNDC | PD_NOSELECTION | PD_NOPAGENUMS | PD_USEDEVMODECOPIESANDCOLLATE;
  const BOOL chosen = PrintDlgW(&question);
  *failed = !chosen && CommDlgExtendedError() != 0;
  for (const HGLOBAL memory : {question.hDevMode, question.hDevNames}) {
    if (memory != nullptr) GlobalFree(memory);
  }
  return chosen ? question.hDC : nullptr;
}

bool PrintPage(HDC printer, const Drawing& drawing, std::u16string_view title) {
  const std::wstring name = ToWide(title);
  DOCINFOW document{};
  document.cbSize = sizeof document;
  document.lpszDocName = name.c_str();
  if (StartDocW(printer, &document) <= 0) return false;
  const bool begun = StartPage(printer) > 0;
  if (begun) DrawInTrueSize(printer, drawing);
  if (begun && EndPage(printer) > 0) return EndDoc(printer) > 0;
  AbortDoc(printer);
  return false;
}

}  // namespace kerno
