// The progress of something long, with a button to cancel it; it appears when it takes a while.
#pragma once

#include <string_view>

#include "base/notices.h"
#include "platform/win32/windows_api.h"

namespace kerno {

class ProgressWindow {
 public:
  // Whether the owner takes no input while the progress is shown, or goes on without losing the
  // keyboard. It appears after kProgressDelay, or at once.
  enum class Owner { kBlocked, kFree };
  ProgressWindow(HINSTANCE instance, HWND owner, Owner state);
  ~ProgressWindow();
  ProgressWindow(const ProgressWindow&) = delete;
  ProgressWindow& operator=(const ProgressWindow&) = delete;

  // From 0 to 1. kNo when the user cancelled.
  Continue Show(std::u16string_view text, double part);

 private:
  static INT_PTR CALLBACK DialogProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

  HINSTANCE instance_;
  HWND owner_;
  Owner state_;
  HWND window_ = nullptr;
  DWORD since_;
  bool cancelled_ = false;
};

}  // namespace kerno
