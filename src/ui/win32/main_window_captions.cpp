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
  const std::u16string hint = why.empty() ? Say(kerno::Control(id).hint) : std::u16string(why);
  ShowHint(hints_, window_, Item(id), hint);
  MarkFault(Item(id), !why.empty());
}

}  // namespace kerno
