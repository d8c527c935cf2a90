// Where the controls stand, and how large they and their lists are.

#include <algorithm>

#include "app/controls.h"
#include "ui/win32/main_window.h"
#include "ui/win32/windows_controls.h"

namespace kerno {
namespace {

// Lengths in pixels of the first density.
constexpr int kGap = 8;
constexpr int kButtonWidth = 80;
constexpr int kButtonHeight = 26;
constexpr int kLabelWidth = 44;
constexpr int kNumberWidth = 90;
constexpr int kSpinWidth = 18;
constexpr int kCheckWidth = 110;
constexpr int kColorWidth = 170;
constexpr int kStatusHeight = 36;  // two lines
constexpr int kLowestText = 60;

constexpr ControlId kCombos[] = {ControlId::kHeightList, ControlId::kFace, ControlId::kFirstColor,
                                 ControlId::kSecondColor};

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

// Text and paste button at the top, two rows of settings, the preview, the status, the outputs.
void MainWindow::LayOut() {
  if (!ready_ || IsIconic(window_)) return;
  RECT client{};
  GetClientRect(window_, &client);
  const int gap = Scaled(kGap);
  const int button = Scaled(kButtonWidth);
  const int button_height = Scaled(kButtonHeight);
  const int right = client.right - gap;
  const int text_height = std::max(Scaled(kLowestText), static_cast<int>(client.bottom) / 5);
  Place(Item(ControlId::kText), gap, gap, right - button - 2 * gap, text_height);
  Place(Item(ControlId::kPaste), right - button, gap, button, button_height);
  const int settings = LayOutSettings(gap + text_height + gap, right);

  const int buttons = client.bottom - gap - button_height;
  const int status = buttons - gap / 2 - Scaled(kStatusHeight);
  Place(Item(ControlId::kPreview), gap, settings, right - gap, status - gap / 2 - settings);
  Place(Item(ControlId::kStatus), gap, status, right - gap, Scaled(kStatusHeight));
  int x = gap;
  for (const ControlId id : OutputButtons()) {
    const HWND control = Item(id);
    if (!IsShown(control)) continue;
    Place(control, x, buttons, button, button_height);
    x += button + gap;
  }
  Place(Item(ControlId::kQuit), right - button, buttons, button, button_height);

  RECT frame{};
  GetClientRect(Item(ControlId::kPreview), &frame);
  if (presenter_) presenter_->PreviewResized(frame.right, frame.bottom);
  picture_.reset();
  // A control that was placed has left its picture on those that are still to move.
  RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
}

// The two rows from `top` down to the end of the window's lines at `right`. Where the preview may
// begin.
int MainWindow::LayOutSettings(int top, int right) {
  RECT client{};
  GetClientRect(window_, &client);
  const int drop = client.bottom;                    // the list's own length is set elsewhere
  const int row = HeightOf(Item(ControlId::kFace));  // a combo box keeps the height of its field
  const int gap = Scaled(kGap);
  const int label = Scaled(kLabelWidth);
  const int number = Scaled(kNumberWidth);
  const int spin = Scaled(kSpinWidth);

  const int height_edit = right - spin - number;
  const int height_list = height_edit - gap - number;
  const int height_label = height_list - label;
  const int vertical = height_label - gap - label;
  const int face = gap + label;
  Place(Item(ControlId::kFaceLabel), gap, top, label, row);
  Place(Item(ControlId::kFace), face, top, vertical - gap - face, drop);
  Place(Item(ControlId::kVertical), vertical, top, label, row);
  Place(Item(ControlId::kHeightLabel), height_label, top, label, row);
  Place(Item(ControlId::kHeightList), height_list, top, number, drop);
  Place(Item(ControlId::kHeightEdit), height_edit, top, number, row);
  Place(Item(ControlId::kHeightSpin), right - spin, top, spin, row);
  top += row + gap;

  const int check = Scaled(kCheckWidth);
  const int color = Scaled(kColorWidth);
  Place(Item(ControlId::kPolyPolygon), gap, top, check, row);
  Place(Item(ControlId::kFirstColor), gap + check, top, color, drop);
  Place(Item(ControlId::kSecondColor), gap + check + color + gap, top, color, drop);
  return top + row + gap;
}

// The height list is as high as its font wants; the combo boxes that draw their own items stand in
// line with it.
void MainWindow::SizeItems() {
  const LRESULT field = Send(ControlId::kHeightList, CB_GETITEMHEIGHT, static_cast<WPARAM>(-1));
  for (const ControlId id : kCombos) {
    if (id == ControlId::kHeightList) continue;
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
  for (const ControlId id : kCombos) {
    Send(id, CB_SETMINVISIBLE, static_cast<WPARAM>(RowsBelow(id)));
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
  ShowTextFormat(shown_face_, shown_color_);
  SizeItems();
  MoveWindow({place.left, place.top, place.right, place.bottom});
  LayOut();
  SizeDropDowns();
}

}  // namespace kerno
