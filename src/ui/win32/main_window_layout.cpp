// Where the controls stand, and how large they and their lists are.

#include <algorithm>
#include <utility>
#include <vector>

#include "app/controls.h"
#include "ui/win32/main_window.h"
#include "ui/win32/windows_controls.h"

namespace kerno {
namespace {

// Lengths in pixels of the first density.
constexpr int kGap = 8;
constexpr int kButtonHeight = 26;
constexpr int kStatusHeight = 36;  // two lines
constexpr int kLowestText = 60;

bool IsShown(HWND control) {
  return (GetWindowLongPtrW(control, GWL_STYLE) & WS_VISIBLE) != 0;
}

void Place(HWND control, int left, int top, int width, int height) {
  SetWindowPos(control, nullptr, left, top, std::max(width, 0), std::max(height, 0),
               SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS);
}

int HeightOf(HWND control) {
  RECT place{};
  GetWindowRect(control, &place);
  return place.bottom - place.top;
}

}  // namespace

// The lines from the top down to the preview, and those below it from the bottom up.
void MainWindow::LayOut() {
  if (!ready_ || IsIconic(window_)) return;
  RECT client{};
  GetClientRect(window_, &client);
  const int gap = Scaled(kGap);
  const int row = HeightOf(Item(ControlId::kFace));  // a combo box keeps the height of its field
  const int text = std::max(Scaled(kLowestText), static_cast<int>(client.bottom) / 5);
  int top = gap;
  for (const auto& [line, height] :
       {std::pair(WindowLine::kText, text), {WindowLine::kFace, row}, {WindowLine::kColors, row}}) {
    LayOutLine(line, top, height);
    top += height + gap;
  }
  const int outputs = client.bottom - gap - Scaled(kButtonHeight);
  const int status = outputs - gap / 2 - Scaled(kStatusHeight);
  LayOutLine(WindowLine::kPreview, top, status - gap / 2 - top);
  LayOutLine(WindowLine::kStatus, status, Scaled(kStatusHeight));
  LayOutLine(WindowLine::kOutputs, outputs, Scaled(kButtonHeight));

  RECT frame{};
  GetClientRect(Item(ControlId::kPreview), &frame);
  if (presenter_) presenter_->PreviewResized(frame.right, frame.bottom);
  picture_.reset();
  // A control that was placed has left its picture on those that are still to move.
  RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
}

void MainWindow::LayOutLine(WindowLine line, int top, int height) {
  RECT client{};
  GetClientRect(window_, &client);
  const int gap = Scaled(kGap);
  std::vector<const ControlRow*> rows;
  int rest = client.right - gap;  // of the width, less a gap before each control
  for (const ControlRow& row : Controls()) {
    if (row.line != line || !IsShown(Item(row.id))) continue;
    rows.push_back(&row);
    rest -= Scaled(row.width) + (row.kind == ControlKind::kUpDown ? 0 : gap);
  }
  int left = 0;
  for (const ControlRow* row : rows) {
    if (row->at_end) left += std::exchange(rest, 0);
    if (row->kind != ControlKind::kUpDown) left += gap;
    const int width = row->width == kRestOfLine ? std::exchange(rest, 0) : Scaled(row->width);
    // A list's own length is set elsewhere.
    const int tall = HasDropDown(row->kind)              ? static_cast<int>(client.bottom)
                     : row->kind == ControlKind::kButton ? Scaled(kButtonHeight)
                                                         : height;
    Place(Item(row->id), left, top, width, tall);
    left += width;
  }
}

// The height list is as high as its font wants; the combo boxes that draw their own items stand in
// line with it.
void MainWindow::SizeItems() {
  const LRESULT field = Send(ControlId::kHeightList, CB_GETITEMHEIGHT, static_cast<WPARAM>(-1));
  for (const ControlRow& row : Controls()) {
    if (!HasDropDown(row.kind) || row.kind == ControlKind::kTextCombo) continue;
    const ControlId id = row.id;
    Send(id, CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), field);
    const int excess = HeightOf(Item(id)) - HeightOf(Item(ControlId::kHeightList));
    Send(id, CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), field - excess);
    Send(id, CB_SETITEMHEIGHT, 0, Scaled(kListRow));
  }
}

int MainWindow::RowsBelow(ControlId combo) const {
  RECT client{};
  GetClientRect(window_, &client);
  RECT place{};
  GetWindowRect(Item(combo), &place);
  POINT top = {place.left, place.top};
  ScreenToClient(window_, &top);
  return DropDownRows(client.bottom, top.y, static_cast<int>(Send(combo, CB_GETITEMHEIGHT)));
}

void MainWindow::SizeDropDowns() {
  if (!ready_ || IsIconic(window_)) return;
  for (const ControlRow& row : Controls()) {
    if (!HasDropDown(row.kind)) continue;
    Send(row.id, CB_SETMINVISIBLE, static_cast<WPARAM>(RowsBelow(row.id)));
  }
}

// The window has come to a screen of another density, where `place` is its due place.
void MainWindow::DensityChanged(int dpi, const RECT& place) {
  dpi_ = dpi;
  LOGFONTW description = first_font_;
  description.lfHeight = MulDiv(first_font_.lfHeight, dpi, first_dpi_);
  const HFONT font = CreateFontIndirectW(&description);
  for (HWND control = GetWindow(window_, GW_CHILD); control != nullptr;
       control = GetWindow(control, GW_HWNDNEXT)) {
    if (control == text_->control()) continue;  // it shows the chosen face
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
  }
  if (font_ != nullptr) DeleteObject(font_);
  font_ = font;
  presenter_->ShowLooksAgain();
  SizeItems();
  PlaceWindow({.normal = {place.left, place.top, place.right, place.bottom}});
  LayOut();
  SizeDropDowns();
}

}  // namespace kerno
