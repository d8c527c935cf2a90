// What the main window shows when it is told.

#include <algorithm>
#include <utility>

#include "app/captions.h"
#include "app/controls.h"
#include "app/scoped_flag.h"
#include "app/window_place.h"
#include "platform/win32/wide_text.h"
#include "ui/win32/control_hints.h"
#include "ui/win32/file_questions.h"
#include "ui/win32/looks.h"
#include "ui/win32/main_window.h"
#include "ui/win32/resource.h"
#include "ui/win32/windows_controls.h"

namespace kerno {
namespace {

struct AboutTexts {
  std::wstring version;
  std::wstring copyright;
};

INT_PTR CALLBACK AboutProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  if (const auto answer = AnswerInLooks(window, message, wparam, lparam)) return *answer;
  if (message == WM_INITDIALOG) {
    const auto& texts = *reinterpret_cast<const AboutTexts*>(lparam);
    SetWindowTextW(window, ToWide(Say(u"About Kerno")).c_str());
    SetDlgItemTextW(window, static_cast<int>(ControlId::kAboutVersion), texts.version.c_str());
    SetDlgItemTextW(window, static_cast<int>(ControlId::kAboutCopyright), texts.copyright.c_str());
    return TRUE;
  }
  if (message == WM_COMMAND && (LOWORD(wparam) == IDOK || LOWORD(wparam) == IDCANCEL)) {
    EndDialog(window, LOWORD(wparam));
    return TRUE;
  }
  return FALSE;
}

BOOL CALLBACK CollectWorkArea(HMONITOR monitor, HDC /*dc*/, LPRECT /*place*/, LPARAM target) {
  MONITORINFO info{};
  info.cbSize = sizeof info;
  if (GetMonitorInfoW(monitor, &info)) {
    const RECT& work = info.rcWork;
    reinterpret_cast<std::vector<WindowRect>*>(target)->push_back(
        {work.left, work.top, work.right, work.bottom});
  }
  return TRUE;
}

}  // namespace

void MainWindow::ShowText(std::u16string_view text, TextChange change) {
  const ScopedFlag writing(shows_);
  text_->ShowText(text, change);
}

void MainWindow::ShowTextFormat(std::u16string_view face, Color color) {
  const ScopedFlag writing(shows_);
  text_->ShowFormat(face, color, dpi_);
}

void MainWindow::ShowFaces(const std::vector<std::u16string>& faces) {
  const ScopedFlag writing(shows_);
  const HWND combo = Item(ControlId::kFace);
  const std::u16string typed = TextOf(ControlId::kFace);
  SendMessageW(combo, WM_SETREDRAW, FALSE, 0);
  SendMessageW(combo, CB_RESETCONTENT, 0, 0);
  for (const std::u16string& face : faces) {
    SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(ToWide(face).c_str()));
  }
  SetWindowTextW(combo, ToWide(typed).c_str());
  SendMessageW(combo, WM_SETREDRAW, TRUE, 0);
  InvalidateRect(combo, nullptr, TRUE);
  suggestions_->SetFaces(faces);
}

void MainWindow::ShowControlText(ControlId id, std::u16string_view text) {
  const ScopedFlag writing(shows_);
  if (TextOf(id) != text) SetWindowTextW(Item(id), ToWide(text).c_str());
}

void MainWindow::ShowChecked(ControlId id, bool checked) {
  CheckDlgButton(window_, static_cast<int>(id), checked ? BST_CHECKED : BST_UNCHECKED);
}

void MainWindow::ShowColors(ControlId id, const std::vector<ColorChoice>& colors, size_t selected) {
  const ScopedFlag writing(shows_);
  const HWND combo = Item(id);
  SendMessageW(combo, CB_RESETCONTENT, 0, 0);
  for (const ColorChoice& choice : colors) {
    const LRESULT index =
        SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(ToWide(choice.name).c_str()));
    SendMessageW(combo, CB_SETITEMDATA, static_cast<WPARAM>(index),
                 static_cast<LPARAM>(choice.color));
  }
  SendMessageW(combo, CB_SETCURSEL, selected, 0);
}

void MainWindow::Enable(ControlId id, bool enabled) {
  EnableWindow(Item(id), enabled);
}

void MainWindow::ShowControl(ControlId id, bool visible) {
  if (visible) {
    hidden_.erase(id);
  } else {
    hidden_.insert(id);
  }
  ShowWindow(Item(id), visible && mode_ == WindowMode::kClassic ? SW_SHOWNA : SW_HIDE);
  LayOut();
}

void MainWindow::ShowMenuChecked(MenuCommand command, bool checked) {
  CheckMenuItem(menu_, static_cast<UINT>(command),
                static_cast<UINT>(MF_BYCOMMAND) | (checked ? MF_CHECKED : MF_UNCHECKED));
}

void MainWindow::ShowStatus(std::u16string_view text, StatusKind kind) {
  status_kind_ = kind;
  const HWND status = Item(ControlId::kStatus);
  SetWindowTextW(status, ToWide(text).c_str());
  ShowHint(hints_, window_, status, text);  // whole, where two lines do not hold it
  InvalidateRect(status, nullptr, TRUE);
}

void MainWindow::RepaintPreview() {
  picture_is_stale_ = true;
  InvalidateRect(Item(ControlId::kPreview), nullptr, FALSE);
}

void MainWindow::ShowAbout(std::u16string_view version, std::u16string_view copyright) {
  const AboutTexts texts = {ToWide(version), ToWide(copyright)};
  DialogBoxParamW(instance_, MAKEINTRESOURCEW(KERNO_ABOUT_DIALOG), window_, AboutProc,
                  reinterpret_cast<LPARAM>(&texts));
}

std::optional<std::filesystem::path> MainWindow::AskFolder(const std::filesystem::path& start) {
  return AskForFolder(window_, start);
}

// The system's own fonts are the toolkit's.
bool MainWindow::LoadFontFile(const std::filesystem::path& /*file*/) {
  return true;
}

void MainWindow::CallWhenDue(int milliseconds) {
  SetTimer(window_, kDueTimer, static_cast<UINT>(milliseconds), nullptr);
}

WindowPlace MainWindow::PlaceOfWindow() const {
  if (!is_placed_) return {.normal = FirstPlace(), .show = WindowShow::kNormal};
  WINDOWPLACEMENT placement{};
  placement.length = sizeof placement;
  GetWindowPlacement(window_, &placement);
  RECT place = placement.rcNormalPosition;
  const WindowShow show = IsIconic(window_)   ? WindowShow::kMinimised
                          : IsZoomed(window_) ? WindowShow::kMaximised
                                              : WindowShow::kNormal;
  if (show == WindowShow::kNormal) {
    GetWindowRect(window_, &place);  // where it is, docked to a side of the screen, too
  } else {
    // A placement counts from the corner of its screen's work area.
    MONITORINFO screen{};
    screen.cbSize = sizeof screen;
    GetMonitorInfoW(MonitorFromRect(&place, MONITOR_DEFAULTTONEAREST), &screen);
    OffsetRect(&place, screen.rcWork.left - screen.rcMonitor.left,
               screen.rcWork.top - screen.rcMonitor.top);
  }
  return {.normal = {place.left, place.top, place.right, place.bottom}, .show = show};
}

// In the middle of the screen on which the system has put the window.
WindowRect MainWindow::FirstPlace() const {
  MONITORINFO screen{};
  screen.cbSize = sizeof screen;
  GetMonitorInfoW(MonitorFromWindow(window_, MONITOR_DEFAULTTONEAREST), &screen);
  const RECT& work = screen.rcWork;
  const auto [wide, high] =
      FirstSize(MulDiv(work.right - work.left, USER_DEFAULT_SCREEN_DPI, dpi_),
                MulDiv(work.bottom - work.top, USER_DEFAULT_SCREEN_DPI, dpi_));
  RECT frame = {0, 0, Scaled(wide), Scaled(high)};
  AdjustWindowRectEx(&frame, static_cast<DWORD>(GetWindowLongPtrW(window_, GWL_STYLE)), TRUE, 0);
  const int width = std::min(frame.right - frame.left, work.right - work.left);
  const int height = std::min(frame.bottom - frame.top, work.bottom - work.top);
  const int left = work.left + (work.right - work.left - width) / 2;
  const int top = work.top + (work.bottom - work.top - height) / 2;
  return {left, top, left + width, top + height};
}

void MainWindow::PlaceWindow(const WindowPlace& place) {
  const WindowRect rect = place.normal == WindowRect{} ? FirstPlace() : place.normal;
  SetWindowPos(window_, nullptr, rect.left, rect.top, rect.right - rect.left,
               rect.bottom - rect.top, SWP_NOZORDER | SWP_NOACTIVATE);
  opens_maximised_ = place.show == WindowShow::kMaximised;
  is_placed_ = true;
}

std::vector<WindowRect> MainWindow::Screens() const {
  std::vector<WindowRect> screens;
  EnumDisplayMonitors(nullptr, nullptr, CollectWorkArea, reinterpret_cast<LPARAM>(&screens));
  return screens;
}

void MainWindow::CloseWindow() {
  PostMessageW(window_, WM_CLOSE, 0, 0);
}

}  // namespace kerno
