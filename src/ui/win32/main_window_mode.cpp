// The two ways of working: the switch at the top of the window, and what goes to which of them.

#include <algorithm>
#include <utility>

#include "app/captions.h"
#include "app/cut_presenter.h"
#include "app/scoped_flag.h"
#include "platform/win32/wide_text.h"
#include "ui/win32/main_window.h"
#include "ui/win32/window_menu.h"
#include "ui/win32/window_text.h"
#include "ui/win32/windows_controls.h"

namespace kerno {
namespace {

// Lengths in pixels of the first density.
constexpr int kGap = 8;
constexpr int kHeight = 24;
constexpr int kWidth = 76;

struct ModeRow {
  ControlId id;
  WindowMode mode;
  std::u16string_view caption;
};
constexpr ModeRow kModes[] = {{ControlId::kModeClassic, WindowMode::kClassic, u"Classic"},
                              {ControlId::kModeCut, WindowMode::kCut, u"Cut"}};

}  // namespace

// Two buttons that are one switch: the arrow keys go from one to the other.
void MainWindow::MakeModeSwitch() {
  DWORD first = WS_GROUP | WS_TABSTOP;
  for (const ModeRow& row : kModes) {
    CreateWindowExW(
        WS_EX_NOPARENTNOTIFY, L"BUTTON", L"",
        BS_AUTORADIOBUTTON | BS_PUSHLIKE | WS_CHILD | WS_VISIBLE | std::exchange(first, DWORD{0}),
        0, 0, 0, 0, window_, reinterpret_cast<HMENU>(static_cast<INT_PTR>(row.id)), instance_,
        nullptr);
  }
  ShowModeCaptions();
}

void MainWindow::ShowModeCaptions() const {
  for (const ModeRow& row : kModes) {
    SetWindowTextW(Item(row.id), ToWide(Say(row.caption)).c_str());
  }
}

// Returns where the switch ends.
int MainWindow::LayOutModeSwitch() const {
  int left = Scaled(kGap);
  for (const ModeRow& row : kModes) {
    SetWindowPos(Item(row.id), nullptr, left, Scaled(kGap) / 2, Scaled(kWidth), Scaled(kHeight),
                 SWP_NOZORDER | SWP_NOACTIVATE);
    left += Scaled(kWidth);
  }
  return Scaled(kGap) / 2 + Scaled(kHeight);
}

bool MainWindow::IsOffered(ControlId id) const {
  return Item(id) != nullptr && !hidden_.contains(id);
}

void MainWindow::ShowMode(WindowMode mode) {
  mode_ = mode;
  EnableMenu(GetMenu(window_), mode);
  if (suggestions_) suggestions_->Hide();
  for (const ModeRow& row : kModes) {
    Send(row.id, BM_SETCHECK, row.mode == mode ? BST_CHECKED : BST_UNCHECKED);
  }
  const bool is_cut = mode == WindowMode::kCut;
  for (const ControlRow& row : Controls()) {
    const HWND control = Item(row.id);
    if (control != nullptr) ShowWindow(control, !is_cut && IsOffered(row.id) ? SW_SHOWNA : SW_HIDE);
  }
  cut_page_->Show(is_cut);
  LayOut();
  SizeDropDowns();
  if (IsWindowVisible(window_)) FocusText();
}

void MainWindow::FocusText() const {
  if (mode_ == WindowMode::kCut) {
    cut_page_->FocusText();
  } else {
    SetFocus(text_->control());
  }
}

// A key that both the menu and a button of the Cut page have is the button's while that is shown.
bool MainWindow::ChooseFromMenu(const MenuRow& row) {
  const std::u16string_view key = row.shortcut;
  if (mode_ == WindowMode::kCut && !key.empty()) {
    for (const CutControlRow& control : CutControls()) {
      if (key == control.shortcut) {
        return cut_page_->Command(static_cast<int>(control.id), BN_CLICKED);
      }
    }
  }
  presenter_->Chosen(row.command);
  return true;
}

}  // namespace kerno
