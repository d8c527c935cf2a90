#include "ui/win32/progress_window.h"

#include <cmath>

#include "app/captions.h"
#include "app/controls.h"
#include "platform/win32/wide_text.h"
#include "ui/win32/looks.h"
#include "ui/win32/resource.h"
#include "ui/win32/windows_controls.h"

namespace kerno {
namespace {

constexpr int kSteps = 1000;

}  // namespace

ProgressWindow::ProgressWindow(HINSTANCE instance, HWND owner, Owner state)
    : instance_(instance), owner_(owner), state_(state), since_(GetTickCount()) {}

ProgressWindow::~ProgressWindow() {
  if (window_ == nullptr) return;
  EnableWindow(owner_, TRUE);
  DestroyWindow(window_);
}

INT_PTR CALLBACK ProgressWindow::DialogProc(HWND window, UINT message, WPARAM wparam,
                                            LPARAM lparam) {
  if (const auto answer = AnswerInLooks(window, message, wparam, lparam)) return *answer;
  if (message == WM_INITDIALOG) {
    SetWindowLongPtrW(window, GWLP_USERDATA, lparam);
    SendDlgItemMessageW(window, KERNO_PROGRESS_BAR, PBM_SETRANGE32, 0, kSteps);
    return TRUE;
  }
  if (message == WM_COMMAND && LOWORD(wparam) == IDCANCEL) {
    reinterpret_cast<ProgressWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA))->cancelled_ = true;
    return TRUE;
  }
  return FALSE;
}

Continue ProgressWindow::Show(std::u16string_view text, double part) {
  if (window_ == nullptr) {
    if (state_ == Owner::kBlocked && GetTickCount() - since_ < DWORD{kProgressDelay})
      return Continue::kYes;
    window_ = CreateDialogParamW(instance_, MAKEINTRESOURCEW(KERNO_PROGRESS_DIALOG), owner_,
                                 DialogProc, reinterpret_cast<LPARAM>(this));
    if (window_ == nullptr) return Continue::kYes;
    SetDlgItemTextW(window_, IDCANCEL, ToWide(Say(u"Cancel")).c_str());
    if (state_ == Owner::kBlocked) EnableWindow(owner_, FALSE);
    ShowWindow(window_, state_ == Owner::kBlocked ? SW_SHOW : SW_SHOWNOACTIVATE);
  }
  SetDlgItemTextW(window_, KERNO_PROGRESS_TEXT, ToWide(text).c_str());
  SendDlgItemMessageW(window_, KERNO_PROGRESS_BAR, PBM_SETPOS,
                      static_cast<WPARAM>(std::lround(part * kSteps)), 0);
  // Only what concerns this window and painting: nothing else may happen meanwhile.
  MSG message{};
  while (PeekMessageW(&message, window_, 0, 0, PM_REMOVE)) {
    if (!IsDialogMessageW(window_, &message)) DispatchMessageW(&message);
  }
  UpdateWindow(owner_);
  return cancelled_ ? Continue::kNo : Continue::kYes;
}

}  // namespace kerno
