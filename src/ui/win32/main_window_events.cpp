// What the system and the controls tell the main window, handed on to the dialog.

#include <algorithm>

#include "app/controls.h"
#include "app/scoped_flag.h"
#include "platform/win32/wide_text.h"
#include "ui/win32/control_drawing.h"
#include "ui/win32/looks.h"
#include "ui/win32/main_window.h"
#include "ui/win32/window_menu.h"
#include "ui/win32/windows_controls.h"

namespace kerno {

INT_PTR MainWindow::Receive(UINT message, WPARAM wparam, LPARAM lparam) {
  if (!presenter_) return FALSE;
  switch (message) {
    case WM_SYSCOMMAND:
      if (static_cast<int>(wparam & 0xFFF0) != static_cast<int>(MenuCommand::kAbout)) return FALSE;
      presenter_->Chosen(MenuCommand::kAbout);
      return TRUE;
    case WM_PAINT:
      if (!IsIconic(window_)) return FALSE;
      PaintIcon();
      return TRUE;
    case WM_QUERYDRAGICON:  // one of the few messages whose result is the procedure's own
      return reinterpret_cast<INT_PTR>(icon_);
    case WM_DROPFILES:
      PostMessageW(window_, kDropped, wparam, 0);
      return TRUE;
    case WM_SIZE:
      suggestions_->Hide();
      LayOut();
      SizeDropDowns();
      return TRUE;
    case WM_MOVE:
    case WM_ACTIVATE:
    case WM_ENTERMENULOOP:
      suggestions_->Hide();
      return FALSE;
    case WM_DPICHANGED:
      DensityChanged(LOWORD(wparam), *reinterpret_cast<const RECT*>(lparam));
      return TRUE;
    case WM_WINDOWPOSCHANGING:
      KeepRoom(*reinterpret_cast<WINDOWPOS*>(lparam));
      return FALSE;
    case WM_GETMINMAXINFO:
      BoundSize(*reinterpret_cast<MINMAXINFO*>(lparam));
      return TRUE;
    case WM_COMMAND:
      return Command(LOWORD(wparam), HIWORD(wparam)) ? TRUE : FALSE;
    case WM_NOTIFY:
      return Notify(*reinterpret_cast<const NMHDR*>(lparam)) ? TRUE : FALSE;
    case WM_DRAWITEM:
      DrawItem(*reinterpret_cast<const DRAWITEMSTRUCT*>(lparam));
      return TRUE;
    case WM_MEASUREITEM: {
      auto& item = *reinterpret_cast<MEASUREITEMSTRUCT*>(lparam);
      if (item.CtlType != ODT_MENU) return FALSE;
      MeasureMenuItem(menu_, window_, item);
      return TRUE;
    }
    case WM_CTLCOLORDLG:
    case WM_CTLCOLORBTN:
    case WM_CTLCOLOREDIT:
    case WM_CTLCOLORLISTBOX:
    case WM_CTLCOLORSTATIC:
      return reinterpret_cast<INT_PTR>(
          GroundOf(message, reinterpret_cast<HDC>(wparam), reinterpret_cast<HWND>(lparam)));
    case WM_TIMER:
      if (wparam != kDueTimer) return FALSE;
      KillTimer(window_, kDueTimer);
      presenter_->Due();
      return TRUE;
    case WM_SYSCOLORCHANGE:
      ShowLooks();
      return FALSE;
    case WM_SETTINGCHANGE:
      if (LearnLooks()) ShowLooks();
      return FALSE;
    case WM_CLOSE:
      if (presenter_->Close()) PostQuitMessage(0);
      return TRUE;
    case WM_QUERYENDSESSION:
      SetWindowLongPtrW(window_, DWLP_MSGRESULT, presenter_->Close() ? TRUE : FALSE);
      return TRUE;
    case WM_ENDSESSION:
      if (wparam == FALSE) return FALSE;
      presenter_->SaveNow();  // what was typed since the question
      PostQuitMessage(0);
      return TRUE;
    case kFillFaces:
      presenter_->FillFaces();
      SizeDropDowns();
      return TRUE;
    case kDropped:
      Dropped(reinterpret_cast<HDROP>(wparam));
      return TRUE;
    case kReadCombo:
      ReadCombo(Control(static_cast<ControlId>(wparam)), CBN_EDITCHANGE);
      return TRUE;
    case kAwake:
      presenter_->Awake();
      return TRUE;
    case kShowMessages:
      ShowWaitingMessages();
      return TRUE;
    default:
      return FALSE;
  }
}

HBRUSH MainWindow::GroundOf(UINT message, HDC dc, HWND control) const {
  if (control == Item(ControlId::kStatus)) return StatusBrush(dc, status_kind_);
  return IsDark() ? ControlBrush(message, dc) : nullptr;
}

void MainWindow::ShowLooks() {
  ApplyLooksToMenu(menu_);
  ApplyLooks(window_);
  ApplyLooksToHints(hints_);
  if (suggestions_) ApplyLooks(suggestions_->list());
  DrawMenuBar(window_);
  if (cut_page_) cut_page_->ShowLooks();
  if (presenter_) presenter_->ShowLooksAgain();
}

void MainWindow::PaintIcon() {
  PAINTSTRUCT paint{};
  const HDC dc = BeginPaint(window_, &paint);
  RECT client{};
  GetClientRect(window_, &client);
  DrawIcon(dc, (client.right - GetSystemMetrics(SM_CXICON) + 1) / 2,
           (client.bottom - GetSystemMetrics(SM_CYICON) + 1) / 2, icon_);
  EndPaint(window_, &paint);
}

// While a selection is told the combo's edit still holds what was in it before.
std::u16string MainWindow::ComboText(ControlId id, int notification) const {
  const LRESULT selected = Send(id, CB_GETCURSEL);
  if (notification != CBN_SELCHANGE || selected == CB_ERR) return TextOf(id);
  return TextOfRow(Item(id), ListKind::kComboBox, selected);
}

void MainWindow::ReadCombo(const ControlRow& row, int notification) {
  if (row.kind != ControlKind::kColorCombo) {
    return presenter_->TextChanged(row.id, ComboText(row.id, notification));
  }
  const LRESULT selected = Send(row.id, CB_GETCURSEL);
  if (selected >= 0) presenter_->Selected(row.id, static_cast<size_t>(selected));
}

void MainWindow::ComboCommand(const ControlRow& row, int notification) {
  if (!shows_ && (notification == CBN_EDITCHANGE || notification == CBN_SELCHANGE)) {
    ReadCombo(row, notification);
  }
  if (!shows_ && row.kind == ControlKind::kFaceCombo) OfferFaces(notification);
  if (row.kind == ControlKind::kFaceCombo && notification == CBN_DROPDOWN) ShowCurrentFace();
  // A list that opens or closes may complete what stands in the edit without telling.
  const bool may_complete = notification == CBN_DROPDOWN || notification == CBN_CLOSEUP;
  if (may_complete && row.kind != ControlKind::kColorCombo) {
    PostMessageW(window_, kReadCombo, static_cast<WPARAM>(row.id), 0);
  }
}

bool MainWindow::Command(int number, int notification) {
  if (const MenuRow* command = FindMenuRow(number)) return ChooseFromMenu(*command);
  if (number == static_cast<int>(ControlId::kModeClassic)) {
    presenter_->ChooseMode(WindowMode::kClassic);
    return true;
  }
  if (number == static_cast<int>(ControlId::kModeCut)) {
    presenter_->ChooseMode(WindowMode::kCut);
    return true;
  }
  if (mode_ == WindowMode::kCut) return cut_page_->Command(number, notification);
  const ControlRow* row = FindControl(static_cast<ControlId>(number));
  if (row == nullptr) return false;
  switch (row->kind) {
    case ControlKind::kButton:
    case ControlKind::kDefaultButton:  // by Enter in a field, too
      presenter_->Pressed(row->id);
      return true;
    case ControlKind::kCheckBox:
      presenter_->Checked(row->id, IsDlgButtonChecked(window_, number) == BST_CHECKED);
      return true;
    case ControlKind::kTextBox:
      if (notification != EN_CHANGE) return false;
      if (!shows_ && !text_->IsComposing()) presenter_->TextChanged(row->id, text_->Text());
      return true;
    case ControlKind::kNumberEdit:
      if (notification != EN_CHANGE) return false;
      if (!shows_) presenter_->TextChanged(row->id, TextOf(row->id));
      return true;
    default:
      if (!HasDropDown(row->kind)) return false;
      ComboCommand(*row, notification);
      return true;
  }
}

// The list opens at the face in the edit, with that in its middle.
void MainWindow::ShowCurrentFace() {
  const std::wstring face = ToWide(TextOf(ControlId::kFace));
  const LRESULT row = Send(ControlId::kFace, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                           reinterpret_cast<LPARAM>(face.c_str()));
  if (row == CB_ERR) return;
  const ScopedFlag writing(shows_);
  Send(ControlId::kFace, CB_SETCURSEL, static_cast<WPARAM>(row));
  const LRESULT above = RowsBelow(ControlId::kFace) / 2;
  Send(ControlId::kFace, CB_SETTOPINDEX, static_cast<WPARAM>(std::max<LRESULT>(row - above, 0)));
}

// While a name is typed the faces that hold it are offered; anything else puts the offer away.
void MainWindow::OfferFaces(int notification) {
  if (notification == CBN_EDITCHANGE) {
    suggestions_->Offer(TextOf(ControlId::kFace), RowsBelow(ControlId::kFace), Scaled(kListRow));
  } else if (notification != CBN_EDITUPDATE && notification != CBN_SETFOCUS) {
    suggestions_->Hide();
  }
}

bool MainWindow::Notify(const NMHDR& header) {
  if (header.code == NM_CUSTOMDRAW && DrawDarkButton(header)) {
    SetWindowLongPtrW(window_, DWLP_MSGRESULT, CDRF_SKIPDEFAULT);
    return true;
  }
  if (header.code != static_cast<UINT>(UDN_DELTAPOS)) return false;
  presenter_->Stepped(static_cast<ControlId>(header.idFrom),
                      reinterpret_cast<const NMUPDOWN&>(header).iDelta);
  SetWindowLongPtrW(window_, DWLP_MSGRESULT, TRUE);  // the edit holds the number, not the control
  return true;
}

void MainWindow::DrawItem(const DRAWITEMSTRUCT& item) {
  if (item.CtlType == ODT_MENU) return DrawMenuItem(window_, item);
  if (item.hwndItem == Item(ControlId::kFace) || item.hwndItem == suggestions_->list()) {
    DrawFaceItem(item);
  } else {
    DrawColorItem(item);
  }
}

void MainWindow::Dropped(HDROP drop) {
  std::vector<std::filesystem::path> files;
  const UINT count = DragQueryFileW(drop, 0xFFFFFFFF, nullptr, 0);
  for (UINT i = 0; i < count; ++i) {
    std::wstring name(static_cast<size_t>(DragQueryFileW(drop, i, nullptr, 0)) + 1, L'\0');
    const UINT length = DragQueryFileW(drop, i, name.data(), static_cast<UINT>(name.size()));
    name.resize(length);
    files.emplace_back(name);
  }
  DragFinish(drop);
  presenter_->Dropped(files);
}

}  // namespace kerno
