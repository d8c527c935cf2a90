// What the Cut page shows and asks when it is told.

#include <shellscalingapi.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "app/captions.h"
#include "app/scoped_flag.h"
#include "platform/win32/wide_text.h"
#include "ui/win32/clipboard.h"
#include "ui/win32/control_hints.h"
#include "ui/win32/cut_page.h"
#include "ui/win32/file_questions.h"
#include "ui/win32/looks.h"
#include "ui/win32/print_drawing.h"
#include "ui/win32/window_text.h"
#include "ui/win32/windows_controls.h"

namespace kerno {
namespace {

constexpr double kMillimetres = 25.4;  // of an inch
constexpr int kProgressSteps = 1000;

// The text without the links and the marks before them.
std::u16string WithoutLinks(std::u16string_view text, const std::vector<StatusLink>& links) {
  std::u16string rest;
  size_t done = 0;
  for (const StatusLink& link : links) {
    rest += text.substr(done, link.first - done);
    rest.erase(rest.find_last_not_of(u" ·") + 1);
    done = link.first + link.count;
  }
  return rest += text.substr(done);
}

void FillList(HWND combo, const std::vector<std::u16string>& items, size_t selected) {
  SendMessageW(combo, WM_SETREDRAW, FALSE, 0);
  SendMessageW(combo, CB_RESETCONTENT, 0, 0);
  for (const std::u16string& item : items) {
    SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(ToWide(item).c_str()));
  }
  SendMessageW(combo, CB_SETCURSEL, selected, 0);
  SendMessageW(combo, WM_SETREDRAW, TRUE, 0);
  InvalidateRect(combo, nullptr, TRUE);
}

}  // namespace

void CutPage::ShowText(std::u16string_view text, TextChange change) {
  const ScopedFlag writing(shows_);
  text_->ShowText(text, change);
}

void CutPage::ShowControlText(ControlId id, std::u16string_view text) {
  const ScopedFlag writing(shows_);
  Made& made = Of(id);
  if (TextOfWindow(made.window) == text) return;
  SetWindowTextW(made.window, ToWide(text).c_str());
  const ControlKind kind = made.row->kind;
  if (kind == ControlKind::kField || kind == ControlKind::kFigure) return;
  made.own_text = text;
  LayOutSoon();
}

void CutPage::ShowChecked(ControlId id, bool checked) {
  SendMessageW(Of(id).window, BM_SETCHECK, checked ? BST_CHECKED : BST_UNCHECKED, 0);
}

void CutPage::ShowChoices(ControlId id, const std::vector<std::u16string>& items, size_t selected) {
  const ScopedFlag writing(shows_);
  const HWND combo = Of(id).window;
  FillList(combo, items, selected);
  int width = 0;
  for (const std::u16string& item : items) width = std::max(width, TextWidth(item));
  SendMessageW(combo, CB_SETDROPPEDWIDTH,
               static_cast<WPARAM>(width + GetSystemMetrics(SM_CXVSCROLL) + Scaled(8)), 0);
}

void CutPage::ShowColors(ControlId id, const std::vector<ColorChoice>& colors, size_t selected) {
  const ScopedFlag writing(shows_);
  std::vector<std::u16string> names;
  for (const ColorChoice& choice : colors) names.push_back(choice.name);
  FillList(Of(id).window, names, selected);
  for (size_t i = 0; i < colors.size(); ++i) {
    SendMessageW(Of(id).window, CB_SETITEMDATA, i, static_cast<LPARAM>(colors[i].color));
  }
}

void CutPage::ShowMenuItems(ControlId id, const std::vector<MenuItem>& items) {
  Of(id).items = items;
}

void CutPage::ShowFault(ControlId id, std::u16string_view why) {
  Made& made = Of(id);
  const bool was_at_fault = made.reason != nullptr;
  if (why.empty() && !was_at_fault) return;
  if (why.empty()) {
    DestroyWindow(std::exchange(made.reason, nullptr));
  } else if (!was_at_fault) {
    made.reason = CreateWindowExW(0, L"STATIC", L"", WS_CHILD | WS_VISIBLE | SS_NOPREFIX, 0, 0, 0,
                                  0, GetParent(made.window), nullptr, instance_, nullptr);
    SendMessageW(made.reason, WM_SETFONT, reinterpret_cast<WPARAM>(font_), FALSE);
  }
  if (made.reason != nullptr) {
    if (TextOfWindow(made.reason) == why) return;
    SetWindowTextW(made.reason, ToWide(why).c_str());
  }
  MarkFault(made.window, !why.empty());
  LayOutSoon();
}

std::u16string CutPage::ReasonOf(ControlId id) const {
  const HWND reason = Of(id).reason;
  return reason != nullptr ? TextOfWindow(reason) : std::u16string();
}

void CutPage::Enable(ControlId id, bool enabled) {
  const Made& made = Of(id);
  EnableWindow(made.window, enabled);
  if (made.caption != nullptr) EnableWindow(made.caption, enabled);
}

void CutPage::ShowControl(ControlId id, bool visible) {
  Made& made = Of(id);
  if (made.shown == visible) return;
  made.shown = visible;
  for (const HWND window : {made.window, made.caption, made.reason}) {
    if (window != nullptr) ShowWindow(window, visible ? SW_SHOWNA : SW_HIDE);
  }
  LayOutSoon();
}

void CutPage::ShowFaceRows(const std::vector<FaceListRow>& rows, std::optional<size_t> selected) {
  const ScopedFlag writing(shows_);
  faces_->Show(rows, selected);
}

void CutPage::RepaintFaceRows() {
  faces_->Repaint();
}

void CutPage::ShowAxes(const std::vector<AxisRow>& axes) {
  const int before = axes_->Height();
  axes_->Show(axes);
  if (axes_->Height() != before) LayOutSoon();
}

void CutPage::RepaintPreview() {
  picture_is_stale_ = true;
  InvalidateRect(Of(ControlId::kCutPreview).window, nullptr, FALSE);
}

// By what the screen says of its own size; where that cannot be true, by the system's density.
double CutPage::PixelsPerMillimetre() const {
  UINT across = 0;
  UINT down = 0;
  GetDpiForMonitor(MonitorFromWindow(window_, MONITOR_DEFAULTTONEAREST), MDT_RAW_DPI, &across,
                   &down);
  const bool is_likely = across >= 50 && across <= 800;
  return (is_likely ? across : static_cast<double>(dpi_)) / kMillimetres / Density();
}

void CutPage::ShowStatus(std::u16string_view text, StatusKind kind,
                         const std::vector<StatusLink>& links) {
  status_kind_ = kind;
  const HWND status = Of(ControlId::kCutStatus).window;
  SetWindowTextW(status, ToWide(WithoutLinks(text, links)).c_str());
  ShowHint(hints_, window_, status, text);  // whole, where two lines do not hold it
  InvalidateRect(status, nullptr, TRUE);
  if (links.empty() && links_.empty()) return;
  for (const LinkButton& link : std::exchange(links_, {})) DestroyWindow(link.window);
  HWND before = status;
  for (const StatusLink& link : links) {
    const int id = kFirstLink + static_cast<int>(links_.size());
    const HWND button =
        CreateWindowExW(0, L"BUTTON", ToWide(text.substr(link.first, link.count)).c_str(),
                        WS_CHILD | WS_VISIBLE | WS_TABSTOP | BS_PUSHBUTTON, 0, 0, 0, 0, window_,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), instance_, nullptr);
    SendMessageW(button, WM_SETFONT, reinterpret_cast<WPARAM>(font_), FALSE);
    SetWindowPos(button, before, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    before = button;  // the Tab key goes on to the next one
    links_.push_back({button, link.number});
  }
  LayOutSoon();
}

std::optional<std::filesystem::path> CutPage::AskSave(const SaveQuestion& question) {
  return AskForSave(parent_, question);
}

std::optional<std::filesystem::path> CutPage::AskOpen(const OpenQuestion& question) {
  return AskForOpen(parent_, question);
}

std::optional<std::filesystem::path> CutPage::AskFolder(const std::filesystem::path& start) {
  return AskForFolder(parent_, start);
}

std::optional<std::u16string> CutPage::AskName(std::u16string_view title,
                                               std::u16string_view proposed) {
  return AskForName(instance_, parent_, title, proposed);
}

std::optional<size_t> CutPage::AskWhich(std::u16string_view text,
                                        const std::vector<std::u16string>& buttons) {
  return AskForDecision(parent_, text, buttons);
}

void CutPage::CopyText(std::u16string_view text) {
  if (CopyToClipboard(window_, text)) return;
  ShowStatus(Say(u"Another program holds the clipboard."), StatusKind::kFailure, {});
}

void CutPage::CopySvg(std::string_view svg) {
  if (CopySvgToClipboard(window_, svg)) return;
  ShowStatus(Say(u"Another program holds the clipboard."), StatusKind::kFailure, {});
}

void CutPage::Print(const Drawing& drawing, std::u16string_view title) {
  const PaperSize size = SizeOnPaper(drawing);
  bool failed = false;
  const HDC printer = AskForPrinter(parent_, size.width > size.height, &failed);
  if (printer != nullptr) {
    const PaperSize page = PageOf(printer);
    const bool fits = size.width <= page.width && size.height <= page.height;
    const auto question = [&] {
      return Say(u"The drawing is {}, the page has room for {}. What does not fit is cut off.",
                 {DescribeSize(size), DescribeSize(page)});
    };
    const bool goes = fits || AskWhether(question(), Say(u"Print"));
    failed = goes && !PrintPage(printer, drawing, title);
    DeleteDC(printer);
  }
  if (failed) ShowStatus(Say(u"The printer cannot be used."), StatusKind::kFailure, {});
}

void CutPage::ShowProgress(std::u16string_view text, double part) {
  const bool shown = part >= 0;
  if (std::exchange(shows_progress_, shown) != shown) {
    for (const HWND window : {progress_text_, progress_bar_, cancel_}) {
      ShowWindow(window, shown ? SW_SHOWNA : SW_HIDE);
    }
    SendMessageW(progress_bar_, PBM_SETRANGE32, 0, kProgressSteps);
    LayOutSoon();
  }
  if (!shown) return;
  SetWindowTextW(progress_text_, ToWide(text).c_str());
  SendMessageW(progress_bar_, PBM_SETPOS,
               static_cast<WPARAM>(std::lround(std::min(part, 1.0) * kProgressSteps)), 0);
}

void CutPage::WakeUp() {
  PostMessageW(window_, kAwake, 0, 0);
}

void CutPage::CallWhenDue(int milliseconds) {
  SetTimer(window_, kDueTimer, static_cast<UINT>(milliseconds), nullptr);
}

void CutPage::ShowLooks() {
  const ScopedFlag writing(shows_);
  const std::u16string face = FromWide(description_.lfFaceName);
  text_->ShowFormat(face, LookColor(COLOR_WINDOWTEXT), dpi_);
  ApplyLooksToHints(hints_);
}

}  // namespace kerno
