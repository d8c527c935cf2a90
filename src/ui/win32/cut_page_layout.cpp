// Where the controls of the Cut page stand.

#include <algorithm>
#include <string>

#include "app/captions.h"
#include "platform/win32/wide_text.h"
#include "ui/win32/cut_page.h"
#include "ui/win32/window_text.h"
#include "ui/win32/windows_controls.h"

namespace kerno {
namespace {

// Lengths in pixels of the first density.
constexpr int kGap = 8;
constexpr int kSmallGap = 4;
constexpr int kButtonHeight = 26;
constexpr int kTextHeight = 84;
constexpr int kFacesHeight = 236;  // five rows
constexpr int kStatusHeight = 36;  // two lines
constexpr int kTitleHeight = 22;
constexpr int kLeastPanel = 310;
constexpr int kMostPanel = 430;
constexpr int kLeastRest = 100;  // of what takes the rest of its line
constexpr int kLeastStatus = 240;
constexpr int kButtonRoom = 18;  // of a button beside its caption
constexpr int kBoxRoom = 22;
constexpr int kWidestCaptions = 120;
constexpr int kWheelStep = 60;

void PlaceWindow(HWND window, int left, int top, int width, int height) {
  SetWindowPos(window, nullptr, left, top, std::max(width, 0), std::max(height, 0),
               SWP_NOZORDER | SWP_NOACTIVATE);
}

bool IsCombo(ControlKind kind) {
  return kind == ControlKind::kChoice || kind == ControlKind::kColorCombo;
}

}  // namespace

int CutPage::TextWidth(std::u16string_view text) const {
  const HDC dc = GetDC(window_);
  const HGDIOBJ before = SelectObject(dc, font_);
  SIZE size{};
  GetTextExtentPoint32W(dc, ToWide(text).c_str(), static_cast<int>(text.size()), &size);
  SelectObject(dc, before);
  ReleaseDC(window_, dc);
  return size.cx;
}

CutPage::Cell CutPage::CellOf(const Made& made) const {
  const CutControlRow& row = *made.row;
  Cell cell;
  cell.made = &made;
  cell.grows = row.width == kRestOfLine;
  if (made.caption != nullptr) cell.caption = TextWidth(Say(row.caption)) + Scaled(kSmallGap);
  const bool is_box = row.kind == ControlKind::kCheckBox;
  const bool is_button = row.kind == ControlKind::kButton || row.kind == ControlKind::kMenuButton ||
                         row.kind == ControlKind::kToggle ||
                         row.kind == ControlKind::kDefaultButton;
  const int room = Scaled(is_box ? kBoxRoom : kButtonRoom);
  const int text = is_box || is_button ? TextWidth(TextOfWindow(made.window)) + room : 0;
  const int least = row.kind == ControlKind::kLinks ? kLeastStatus : kLeastRest;
  // A box needs the room of its caption, no more.
  cell.width = is_box ? text : std::max(Scaled(cell.grows ? least : row.width), text);
  if (is_button && row.width < kButtonHeight) cell.width = Scaled(row.width);
  return cell;
}

int CutPage::HeightOf(const Made& made) const {
  switch (made.row->kind) {
    case ControlKind::kTextBox:
      return Scaled(kTextHeight);
    case ControlKind::kFaceList:
      return Scaled(kFacesHeight);
    case ControlKind::kAxes:
      return axes_->Height();
    case ControlKind::kLinks:
      return Scaled(kStatusHeight);
    case ControlKind::kButton:
    case ControlKind::kMenuButton:
    case ControlKind::kDefaultButton:
    case ControlKind::kToggle:
      return Scaled(kButtonHeight);
    default:
      return field_height_;
  }
}

// The first captions of the lines of a section stand in a column.
int CutPage::CaptionColumn(CutSection section) const {
  int column = 0;
  for (const CutControlRow& row : CutControls()) {
    const Made& made = Of(row.id);
    if (row.section != section || row.same_line || !made.shown || made.caption == nullptr) continue;
    column = std::max(column, CellOf(made).caption);
  }
  return std::min(column, Scaled(kWidestCaptions));
}

// Returns where the section ends.
int CutPage::LayOutSection(CutSection section, int left, int top, int width, Pass pass) const {
  const int gap = Scaled(kGap);
  const int captions = CaptionColumn(section);
  std::vector<Cell> line;
  int taken = 0;
  const auto flush = [&] {
    if (line.empty()) return;
    top = LayOutLine(line, left, top, width, captions, pass) + Scaled(kSmallGap);
    line.clear();
    taken = 0;
  };
  for (const CutControlRow& row : CutControls()) {
    const Made& made = Of(row.id);
    if (row.section != section || !made.shown) continue;
    if (row.kind == ControlKind::kAxes && axes_->IsEmpty()) continue;
    const Cell cell = CellOf(made);
    const int needed = cell.caption + cell.width + gap;
    if (!row.same_line || taken + needed > width) flush();
    taken += line.empty() && cell.caption != 0 ? std::max(captions, cell.caption) + cell.width
             : line.empty()                    ? cell.width
                                               : needed;
    line.push_back(cell);
  }
  flush();
  return top - Scaled(kSmallGap);
}

int CutPage::LayOutLine(const std::vector<Cell>& line, int left, int top, int width, int captions,
                        Pass pass) const {
  const int gap = Scaled(kGap);
  int rest = width - gap * static_cast<int>(line.size() - 1);
  int height = 0;
  for (const Cell& cell : line) {
    const bool in_column = &cell == &line.front() && cell.caption != 0;
    rest -= (in_column ? std::max(captions, cell.caption) : cell.caption) + cell.width;
    height = std::max(height, HeightOf(*cell.made));
  }
  if (pass == Pass::kPlace) {
    int x = left;
    for (const Cell& cell : line) {
      if (cell.caption != 0) {
        const int caption =
            &cell == &line.front() ? std::max(captions, cell.caption) : cell.caption;
        PlaceWindow(cell.made->caption, x, top, caption, height);
        x += caption;
      }
      const int wide = cell.width + (cell.grows ? std::max(0, std::exchange(rest, 0)) : 0);
      PlaceCell(cell, x, top, std::min(wide, left + width - x), height);
      x += wide + gap;
    }
  }
  return LayOutReasons(line, left, top + height, width, pass);
}

void CutPage::PlaceCell(const Cell& cell, int left, int top, int width, int height) const {
  const Made& made = *cell.made;
  const int own = HeightOf(made);
  const int at = top + (height - own) / 2;
  if (made.row->kind == ControlKind::kSearch && IsWindowVisible(empty_search_)) {
    width -= own;
    PlaceWindow(empty_search_, left + width, at, own, own);
  }
  if (made.row->kind == ControlKind::kLinks && !links_.empty()) {
    LayOutLinks(left, at + own / 2, width, own / 2);
    return PlaceWindow(made.window, left, at, width, own / 2);
  }
  // The height of a combo box is that of its open list.
  PlaceWindow(made.window, left, at, width, IsCombo(made.row->kind) ? Scaled(300) : own);
  if (made.row->kind == ControlKind::kAxes) axes_->LayOut(width);
}

// What is wrong with the fields of a line stands below it, in as many lines as it takes.
int CutPage::LayOutReasons(const std::vector<Cell>& line, int left, int top, int width,
                           Pass pass) const {
  for (const Cell& cell : line) {
    if (cell.made->reason == nullptr) continue;
    const HDC dc = GetDC(window_);
    const HGDIOBJ before = SelectObject(dc, font_);
    RECT place = {0, 0, width, 0};
    DrawTextW(dc, ToWide(TextOfWindow(cell.made->reason)).c_str(), -1, &place,
              DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX);
    SelectObject(dc, before);
    ReleaseDC(window_, dc);
    if (pass == Pass::kPlace) PlaceWindow(cell.made->reason, left, top, width, place.bottom);
    top += place.bottom + Scaled(kSmallGap);
  }
  return top;
}

// Links stand in the second line of the status.
void CutPage::LayOutLinks(int left, int top, int width, int height) const {
  const int right = left + width;
  for (const LinkButton& link : links_) {
    const int wide =
        std::min(TextWidth(TextOfWindow(link.window)) + Scaled(kSmallGap), right - left);
    PlaceWindow(link.window, left, top, wide, height);
    left += wide + Scaled(kGap);
  }
}

void CutPage::LayOutProgress(int left, int top, int width) const {
  const int height = Scaled(kButtonHeight);
  const int gap = Scaled(kGap);
  const int button = TextWidth(TextOfWindow(cancel_)) + 2 * Scaled(kButtonRoom);
  const int text = (width - button) / 2;
  PlaceWindow(progress_text_, left, top, text - gap, height);
  PlaceWindow(progress_bar_, left + text, top + height / 4, width - text - button - gap,
              height / 2);
  PlaceWindow(cancel_, left + width - button, top, button, height);
}

// Many changes that come together are laid out once.
void CutPage::LayOutSoon() {
  if (std::exchange(layout_waits_, true)) return;
  PostMessageW(window_, kLayOut, 0, 0);
}

void CutPage::LayOut() {
  layout_waits_ = false;
  RECT client{};
  GetClientRect(window_, &client);
  if (font_ == nullptr || client.right <= 0 || client.bottom <= 0) return;
  const int gap = Scaled(kGap);
  const int inner = client.right - 2 * gap;
  const int outputs = LayOutSection(CutSection::kOutput, gap, 0, inner, Pass::kMeasure);
  int bottom = client.bottom - gap - outputs;
  LayOutSection(CutSection::kOutput, gap, bottom, inner, Pass::kPlace);
  if (shows_progress_) {
    bottom -= Scaled(kButtonHeight) + gap / 2;
    LayOutProgress(gap, bottom, inner);
  }
  bottom -= gap;
  const int panel = std::clamp(static_cast<int>(client.right) * 36 / 100, Scaled(kLeastPanel),
                               Scaled(kMostPanel));
  PlaceWindow(panel_, 0, 0, panel, bottom);
  LayOutPanel(panel, bottom);
  const int left = panel + gap;
  const int width = client.right - gap - left;
  const int bar = LayOutSection(CutSection::kZoomBar, left, 0, width, Pass::kMeasure);
  LayOutSection(CutSection::kZoomBar, left, bottom - bar, width, Pass::kPlace);
  const HWND preview = Of(ControlId::kCutPreview).window;
  PlaceWindow(preview, left, gap, width, bottom - bar - gap - gap / 2);
  RECT frame{};
  GetClientRect(preview, &frame);
  if (presenter_)
    presenter_->PreviewResized(frame.right / Density(), frame.bottom / Density(), Density());
  RepaintPreview();
  RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

void CutPage::LayOutPanel(int width, int height) {
  const int gap = Scaled(kGap);
  const int inside = width - GetSystemMetrics(SM_CXVSCROLL);
  int top = gap;
  for (const auto& [section, title] : titles_) {
    PlaceWindow(title, gap, top, inside - 2 * gap, Scaled(kTitleHeight));
    top += Scaled(kTitleHeight);
    top = LayOutSection(section, gap, top, inside - 2 * gap, Pass::kPlace) + 2 * gap;
  }
  SCROLLINFO bar{};
  bar.cbSize = sizeof bar;
  bar.fMask = SIF_RANGE | SIF_PAGE | SIF_DISABLENOSCROLL;
  bar.nMax = top - 1;
  bar.nPage = static_cast<UINT>(std::max(height, 1));
  SetScrollInfo(panel_, SB_VERT, &bar, TRUE);
  PlaceWindow(sheet_, 0, -scroll_, inside, std::max(top, height));
  ScrollTo(scroll_);
}

void CutPage::ScrollTo(int top) {
  RECT panel{};
  RECT sheet{};
  GetClientRect(panel_, &panel);
  GetClientRect(sheet_, &sheet);
  const int most = std::max(0, static_cast<int>(sheet.bottom - panel.bottom));
  const int to = std::clamp(top, 0, most);
  SetScrollPos(panel_, SB_VERT, to, TRUE);
  if (to == scroll_ && sheet.bottom > 0) {
    RECT place{};
    GetWindowRect(sheet_, &place);
    MapWindowPoints(nullptr, panel_, reinterpret_cast<POINT*>(&place), 2);
    if (place.top == -to) return;
  }
  scroll_ = to;
  SetWindowPos(sheet_, nullptr, 0, -scroll_, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void CutPage::ScrollByBar(int request) {
  RECT panel{};
  GetClientRect(panel_, &panel);
  SCROLLINFO bar{};
  bar.cbSize = sizeof bar;
  bar.fMask = SIF_TRACKPOS | SIF_RANGE;
  GetScrollInfo(panel_, SB_VERT, &bar);
  switch (request) {
    case SB_LINEUP:
      return ScrollBy(-Scaled(kWheelStep) / 2);
    case SB_LINEDOWN:
      return ScrollBy(Scaled(kWheelStep) / 2);
    case SB_PAGEUP:
      return ScrollBy(-panel.bottom);
    case SB_PAGEDOWN:
      return ScrollBy(panel.bottom);
    case SB_TOP:
      return ScrollTo(0);
    case SB_BOTTOM:
      return ScrollTo(bar.nMax);
    case SB_THUMBTRACK:
    case SB_THUMBPOSITION:
      return ScrollTo(bar.nTrackPos);
    default:
      return;
  }
}

// Scrolls a control of the panel into sight, as when the keyboard comes to it.
void CutPage::ShowWhole(HWND control) {
  if (!IsChild(sheet_, control)) return;
  RECT place{};
  RECT panel{};
  GetWindowRect(control, &place);
  GetClientRect(panel_, &panel);
  MapWindowPoints(nullptr, panel_, reinterpret_cast<POINT*>(&place), 2);
  const int gap = Scaled(kGap);
  if (place.bottom + gap > panel.bottom) ScrollBy(place.bottom + gap - panel.bottom);
  GetWindowRect(control, &place);
  MapWindowPoints(nullptr, panel_, reinterpret_cast<POINT*>(&place), 2);
  if (place.top - gap < 0) ScrollBy(place.top - gap);
}

}  // namespace kerno
