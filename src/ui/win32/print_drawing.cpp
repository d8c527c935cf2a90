#include "ui/win32/print_drawing.h"

#include <commdlg.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "drawing/flatten.h"
#include "drawing/measures.h"
#include "platform/win32/wide_text.h"

namespace kerno {
namespace {

constexpr double kChordError = 0.01;  // millimetres, less than a printer's dot
constexpr double kHairline = 0.1;     // millimetres

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

PageSize PageOf(HDC printer) {
  return {static_cast<double>(GetDeviceCaps(printer, HORZSIZE)),
          static_cast<double>(GetDeviceCaps(printer, VERTSIZE))};
}

bool FitsOn(const PageSize& page, const Drawing& drawing) {
  const Box2 picture = PictureOf(drawing);
  const double scale = MillimetresPerUnit(drawing);
  return (picture.max.x - picture.min.x) * scale <= page.width &&
         (picture.max.y - picture.min.y) * scale <= page.height;
}

void DrawInTrueSize(HDC printer, const Drawing& drawing) {
  const double scale = MillimetresPerUnit(drawing) / kMillimetresPerInch;  // inches of a unit
  const double across = GetDeviceCaps(printer, LOGPIXELSX);
  const double up = GetDeviceCaps(printer, LOGPIXELSY);
  const Box2 picture = PictureOf(drawing);
  const P2 middle = {(picture.min.x + picture.max.x) / 2, (picture.min.y + picture.max.y) / 2};
  const double left = GetDeviceCaps(printer, HORZRES) / 2.0;
  const double top = GetDeviceCaps(printer, VERTRES) / 2.0;
  const int width = std::max(1, static_cast<int>(kHairline / kMillimetresPerInch * across));
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
        points.push_back({std::lround(left + (p.x + placed.at.x - middle.x) * scale * across),
                          std::lround(top - (p.y + placed.at.y - middle.y) * scale * up)});
      }
      AddPath(printer, part.path, points);
    }
    EndPath(printer);
    StrokePath(printer);
  }
  SelectObject(printer, before);
  DeleteObject(pen);
}

HDC AskForPrinter(HWND owner, bool* failed) {
  PRINTDLGW question{};
  question.lStructSize = sizeof question;
  question.hwndOwner = owner;
  question.Flags = PD_RETURNDC | PD_NOSELECTION | PD_NOPAGENUMS | PD_USEDEVMODECOPIESANDCOLLATE;
  const BOOL chosen = PrintDlgW(&question);
  *failed = !chosen && CommDlgExtendedError() != 0;
  if (question.hDevMode != nullptr) GlobalFree(question.hDevMode);
  if (question.hDevNames != nullptr) GlobalFree(question.hDevNames);
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
