// The texts of the main window, set again when their language changes.

#include "app/captions.h"
#include "platform/win32/wide_text.h"
#include "ui/win32/control_hints.h"
#include "ui/win32/looks.h"
#include "ui/win32/main_window.h"
#include "ui/win32/window_menu.h"
#include "ui/win32/windows_controls.h"

namespace kerno {

void MainWindow::ShowCaptions() {
  for (const ControlRow& row : Controls()) {
    const HWND control = Item(row.id);
    if (control == nullptr || *row.caption == u'\0') continue;
    SetWindowTextW(control, ToWide(MarkedCaption(Say(row.caption), row.shortcut)).c_str());
  }
  ShowHints();
  ShowMenuCaptions(menu_);
  if (IsDark()) ApplyLooksToMenu(menu_);  // their sizes are others
  DrawMenuBar(window_);
  const MenuRow& about = *FindMenuRow(static_cast<int>(MenuCommand::kAbout));
  ModifyMenuW(GetSystemMenu(window_, FALSE), static_cast<UINT>(about.command), MF_BYCOMMAND,
              static_cast<UINT_PTR>(about.command), ToWide(Say(about.caption)).c_str());
  ShowModeCaptions();
  if (cut_page_) cut_page_->ShowCaptions();
  ShowFont();
  LayOut();
}

void MainWindow::ShowFault(ControlId id, std::u16string_view why) {
  if (why.empty()) {
    faults_.erase(id);
  } else {
    faults_.insert(id);
  }
  const std::u16string hint = why.empty() ? Say(kerno::Control(id).hint) : std::u16string(why);
  ShowHint(hints_, window_, Item(id), hint);
  InvalidateRect(Item(id), nullptr, TRUE);
}

// The ground of a field whose text cannot be used as it stands; null for others.
HBRUSH MainWindow::FaultBrush(HDC dc, HWND edit) const {
  constexpr COLORREF kPaper = RGB(255, 215, 215), kInk = RGB(120, 0, 0);
  for (const ControlId id : faults_) {
    if (edit != Item(id) && GetParent(edit) != Item(id)) continue;
    SetTextColor(dc, kInk);
    SetBkColor(dc, kPaper);
    SetDCBrushColor(dc, kPaper);
    return static_cast<HBRUSH>(GetStockObject(DC_BRUSH));
  }
  return nullptr;
}

}  // namespace kerno
