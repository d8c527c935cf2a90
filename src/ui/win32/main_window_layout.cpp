// Where the controls stand, and how large they and their lists are.

#include <algorithm>
#include <utility>
#include <vector>

#include "app/captions.h"
#include "app/controls.h"
#include "platform/win32/wide_text.h"
#include "ui/win32/interface_font.h"
#include "ui/win32/main_window.h"
#include "ui/win32/windows_controls.h"

namespace kerno {
namespace {

// Lengths in pixels of the first density.
constexpr int kGap = 8;
constexpr int kButtonHeight = 26;
constexpr int kStatusHeight = 36;  // two lines
constexpr int kLeastWidth = 400;
constexpr int kLowestText = 44;
constexpr int kLowestPreview = 60;
constexpr int kLeastText = 120;  // of what takes the rest of its line
constexpr int kLeastFace = 160;
constexpr int kBoxRoom = 22;  // of a check box beside its caption
constexpr int kButtonRoom = 18;

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

// What stays together when a line wraps: a control, the label before it and the arrows after it.
struct MainWindow::Group {
  std::vector<const ControlRow*> rows;
  int width = 0;  // with a gap before each control but arrows; the least one where it can grow
};

int MainWindow::LeastWidth(const ControlRow& row) const {
  if (row.width == kRestOfLine)
    return Scaled(row.kind == ControlKind::kFaceCombo ? kLeastFace : kLeastText);
  const HWND control = Item(row.id);
  const HDC dc = GetDC(control);
  const HGDIOBJ before = SelectObject(dc, reinterpret_cast<HFONT>(Send(row.id, WM_GETFONT)));
  RECT caption{};
  DrawTextW(dc, ToWide(Say(row.caption)).c_str(), -1, &caption, DT_CALCRECT | DT_SINGLELINE);
  SelectObject(dc, before);
  ReleaseDC(control, dc);
  const bool is_label = row.kind == ControlKind::kLabel;
  const int room = *row.caption == u'\0'                ? 0
                   : row.kind == ControlKind::kCheckBox ? Scaled(kBoxRoom)
                   : is_label                           ? 0
                                                        : Scaled(kButtonRoom);
  return std::max(Scaled(row.width), static_cast<int>(caption.right) + room);
}

// The shown controls of a line in as many rows as the width asks for, at least one.
std::vector<std::vector<MainWindow::Group>> MainWindow::Wrapped(WindowLine line, int width) const {
  std::vector<std::vector<Group>> rows(1);
  std::vector<Group> groups;
  bool joins = false;
  for (const ControlRow& row : Controls()) {
    if (row.line != line || !IsOffered(row.id)) continue;
    const bool arrows = row.kind == ControlKind::kUpDown;
    if (groups.empty() || !(joins || arrows)) groups.emplace_back();
    groups.back().rows.push_back(&row);
    groups.back().width += LeastWidth(row) + (arrows ? 0 : Scaled(kGap));
    joins = row.kind == ControlKind::kLabel;
  }
  int rest = width - Scaled(kGap);
  for (Group& group : groups) {
    if (group.width > rest && !rows.back().empty()) {
      rows.emplace_back();
      rest = width - Scaled(kGap);
    }
    rest -= group.width;
    rows.back().push_back(std::move(group));
  }
  return rows;
}

// The heights of the lines; what is left of the window is the preview's.
MainWindow::Heights MainWindow::HeightsFor(int width) const {
  const int gap = Scaled(kGap);
  const auto rows = [&](WindowLine line) { return static_cast<int>(Wrapped(line, width).size()); };
  Heights heights;
  heights.field = HeightOf(Item(ControlId::kFace));  // a combo box keeps the height of its field
  heights.fields = (rows(WindowLine::kFace) + rows(WindowLine::kColors)) * (heights.field + gap);
  heights.outputs = rows(WindowLine::kOutputs) * (Scaled(kButtonHeight) + gap / 2) - gap / 2;
  heights.rest = LayOutModeSwitch() + 2 * gap + heights.fields + heights.outputs +
                 Scaled(kStatusHeight) + 3 * (gap / 2) + gap;
  return heights;
}

// The lowest client area in which everything has room.
int MainWindow::LeastHeight(int width) const {
  return HeightsFor(width).rest + Scaled(kLowestText) + Scaled(kLowestPreview);
}

// The lines from the top down to the preview, and those below it from the bottom up.
void MainWindow::LayOut() {
  if (!ready_ || IsIconic(window_)) return;
  RECT client{};
  GetClientRect(window_, &client);
  const int gap = Scaled(kGap);
  const Heights heights = HeightsFor(client.right);
  const int text =
      std::clamp(static_cast<int>(client.bottom) / 5, Scaled(kLowestText),
                 std::max(Scaled(kLowestText),
                          static_cast<int>(client.bottom) - heights.rest - Scaled(kLowestPreview)));
  int top = LayOutModeSwitch() + gap;
  if (cut_page_) {
    cut_page_->Place({0, top - gap / 2, client.right, client.bottom});
  }
  LayOutLine(WindowLine::kText, top, text, text);
  top += text + gap;
  for (const WindowLine line : {WindowLine::kFace, WindowLine::kColors}) {
    top = LayOutLine(line, top, heights.field, gap) + gap;
  }
  const int outputs = client.bottom - gap - heights.outputs;
  const int status = outputs - gap / 2 - Scaled(kStatusHeight);
  LayOutLine(WindowLine::kPreview, top, status - gap / 2 - top, 0);
  LayOutLine(WindowLine::kStatus, status, Scaled(kStatusHeight), 0);
  LayOutLine(WindowLine::kOutputs, outputs, Scaled(kButtonHeight), gap / 2);

  RECT frame{};
  GetClientRect(Item(ControlId::kPreview), &frame);
  if (presenter_) presenter_->PreviewResized(frame.right, frame.bottom);
  picture_.reset();
  // A control that was placed has left its picture on those that are still to move.
  RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
}

// Returns where the line ends.
int MainWindow::LayOutLine(WindowLine line, int top, int height, int between) {
  RECT client{};
  GetClientRect(window_, &client);
  const int gap = Scaled(kGap);
  for (const std::vector<Group>& groups : Wrapped(line, client.right)) {
    int rest = client.right - gap;  // of the width, less a gap before each control
    for (const Group& group : groups) rest -= group.width;
    int left = 0;
    for (const Group& group : groups) {
      for (const ControlRow* row : group.rows) {
        if (row->at_end) left += std::exchange(rest, 0);
        if (row->kind != ControlKind::kUpDown) left += gap;
        const int width =
            LeastWidth(*row) + (row->width == kRestOfLine ? std::exchange(rest, 0) : 0);
        // A list's own length is set elsewhere.
        const int tall = HasDropDown(row->kind)              ? static_cast<int>(client.bottom)
                         : row->kind == ControlKind::kButton ? Scaled(kButtonHeight)
                                                             : height;
        Place(Item(row->id), left, top, width, tall);
        left += width;
      }
    }
    top += height + between;
  }
  return top - between;
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

// The captions in the font of the language and density.
void MainWindow::ShowFont() {
  const LOGFONTW description = InterfaceFont(CurrentLanguage(), dpi_);
  const HFONT font = CreateFontIndirectW(&description);
  for (HWND control = GetWindow(window_, GW_CHILD); control != nullptr;
       control = GetWindow(control, GW_HWNDNEXT)) {
    if (control == text_->control()) continue;  // it shows the chosen face
    if (cut_page_ && control == cut_page_->window()) continue;
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
  }
  if (cut_page_) cut_page_->ShowFont(description, dpi_);
  if (font_ != nullptr) DeleteObject(font_);
  font_ = font;
  SizeItems();
}

// The window has come to a screen of another density, where `place` is its due place.
void MainWindow::DensityChanged(int dpi, const RECT& place) {
  dpi_ = dpi;
  ShowFont();
  presenter_->ShowLooksAgain();
  SetWindowPos(window_, nullptr, place.left, place.top, place.right - place.left,
               place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
  LayOut();
  SizeDropDowns();
}

// The least size of the window in which everything has room at that width, no larger than its
// screen. Narrower windows want more lines.
SIZE MainWindow::LeastSize(int width) const {
  RECT frame{};
  RECT client{};
  GetWindowRect(window_, &frame);
  GetClientRect(window_, &client);
  const int wide = (frame.right - frame.left) - client.right;
  const int high = (frame.bottom - frame.top) - client.bottom;
  const bool is_cut = mode_ == WindowMode::kCut;
  const int least = Scaled(is_cut ? CutPage::kLeast.cx : kLeastWidth);
  const int lowest = is_cut ? LayOutModeSwitch() + Scaled(CutPage::kLeast.cy)
                            : LeastHeight(std::max(least, width - wide));
  MONITORINFO screen{};
  screen.cbSize = sizeof screen;
  GetMonitorInfoW(MonitorFromWindow(window_, MONITOR_DEFAULTTONEAREST), &screen);
  const RECT& work = screen.rcWork;
  return {std::min<LONG>(least + wide, work.right - work.left),
          std::min<LONG>(lowest + high, work.bottom - work.top)};
}

void MainWindow::BoundSize(MINMAXINFO& bounds) const {
  if (!ready_ || IsIconic(window_)) return;
  const SIZE least = LeastSize(0);
  bounds.ptMinTrackSize.x = least.cx;
  RECT frame{};
  GetWindowRect(window_, &frame);
  bounds.ptMinTrackSize.y = LeastSize(frame.right - frame.left).cy;
}

void MainWindow::KeepRoom(WINDOWPOS& place) const {
  if (!ready_ || (place.flags & SWP_NOSIZE) != 0 || IsIconic(window_)) return;
  place.cx = std::max(place.cx, static_cast<int>(LeastSize(0).cx));
  place.cy = std::max(place.cy, static_cast<int>(LeastSize(place.cx).cy));
}

}  // namespace kerno
