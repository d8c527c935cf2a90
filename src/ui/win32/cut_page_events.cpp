// What the system and the controls tell the Cut page, handed on to its presenter.

#include <filesystem>
#include <utility>

#include "app/captions.h"
#include "app/status_text.h"
#include "platform/win32/wide_text.h"
#include "ui/win32/control_drawing.h"
#include "ui/win32/cut_page.h"
#include "ui/win32/file_drag.h"
#include "ui/win32/key_table.h"
#include "ui/win32/looks.h"
#include "ui/win32/window_menu.h"
#include "ui/win32/window_text.h"
#include "ui/win32/windows_controls.h"

namespace kerno {

LRESULT CALLBACK CutPage::PageProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  if (message == WM_NCCREATE) {
    const auto* const made = reinterpret_cast<const CREATESTRUCTW*>(lparam);
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(made->lpCreateParams));
  }
  auto* const self = reinterpret_cast<CutPage*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (self == nullptr || !self->presenter_) return DefWindowProcW(window, message, wparam, lparam);
  return self->Receive(window, message, wparam, lparam);
}

LRESULT CutPage::Receive(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  switch (message) {
    case WM_ERASEBKGND: {
      RECT client{};
      GetClientRect(window, &client);
      FillRect(reinterpret_cast<HDC>(wparam), &client, LookBrush(COLOR_BTNFACE));
      return 1;
    }
    case WM_COMMAND:
      return Command(LOWORD(wparam), HIWORD(wparam)) ? 0 : 1;
    case WM_NOTIFY:
      return Notify(*reinterpret_cast<const NMHDR*>(lparam));
    case WM_HSCROLL:
      axes_->Moved(reinterpret_cast<HWND>(lparam));
      return 0;
    case WM_VSCROLL:
      ScrollByBar(LOWORD(wparam));
      return 0;
    case WM_MOUSEWHEEL:
      ScrollBy(-GET_WHEEL_DELTA_WPARAM(wparam) * Scaled(60) / WHEEL_DELTA);
      return 0;
    case WM_DRAWITEM:
      DrawItem(*reinterpret_cast<const DRAWITEMSTRUCT*>(lparam));
      return TRUE;
    case WM_MEASUREITEM: {
      auto& item = *reinterpret_cast<MEASUREITEMSTRUCT*>(lparam);
      if (item.CtlType == ODT_MENU) MeasureMenuItem(popup_, window_, item);
      return TRUE;
    }
    case WM_CTLCOLORBTN:
    case WM_CTLCOLOREDIT:
    case WM_CTLCOLORLISTBOX:
    case WM_CTLCOLORSTATIC:
      return reinterpret_cast<LRESULT>(
          GroundOf(message, reinterpret_cast<HDC>(wparam), reinterpret_cast<HWND>(lparam)));
    case WM_TIMER:
      KillTimer(window_, kDueTimer);
      presenter_->Due();
      return 0;
    case kAwake:
      presenter_->Awake();
      return 0;
    case kLayOut:
      if (layout_waits_) LayOut();
      return 0;
    default:
      return DefWindowProcW(window, message, wparam, lparam);
  }
}

HBRUSH CutPage::GroundOf(UINT message, HDC dc, HWND control) const {
  const HBRUSH ground = ControlBrush(message, dc);
  const COLORREF ink = LookColor(COLOR_BTNTEXT);
  const COLORREF paper = LookColor(COLOR_BTNFACE);
  if (control == Of(ControlId::kCutStatus).window) {
    SetTextColor(dc, StatusInk(status_kind_, ink, paper));
  }
  for (const auto& [id, made] : made_) {
    if (made.reason == control) SetTextColor(dc, StatusInk(StatusKind::kFailure, ink, paper));
  }
  return ground;
}

bool CutPage::Command(int number, int notification) {
  if (number == kCancel) return presenter_->Cancelled(), true;
  if (number == kEmptySearch) {
    SetWindowTextW(Of(ControlId::kFaceSearch).window, L"");
    SetFocus(Of(ControlId::kFaceSearch).window);
    return true;
  }
  if (FollowLink(number)) return true;
  const auto id = static_cast<ControlId>(number);
  const CutControlRow* const row = FindCutControl(id);
  if (row == nullptr) return false;
  const HWND window = Of(id).window;
  if (!IsWindowEnabled(window)) return true;  // by its key
  switch (row->kind) {
    case ControlKind::kButton:
    case ControlKind::kDefaultButton:
      presenter_->Pressed(id);
      return true;
    case ControlKind::kMenuButton:
      OpenMenu(id);
      return true;
    case ControlKind::kCheckBox:
    case ControlKind::kToggle:
      presenter_->Checked(id, SendMessageW(window, BM_GETCHECK, 0, 0) == BST_CHECKED);
      return true;
    case ControlKind::kTextBox:
      if (notification != EN_CHANGE) return false;
      if (!shows_ && !text_->IsComposing()) presenter_->TextChanged(id, text_->Text());
      return true;
    case ControlKind::kSearch:
    case ControlKind::kField:
      if (notification != EN_CHANGE) return false;
      if (row->kind == ControlKind::kSearch) {
        ShowWindow(empty_search_, GetWindowTextLengthW(window) > 0 ? SW_SHOWNA : SW_HIDE);
        LayOutSoon();
      }
      if (!shows_) presenter_->TextChanged(id, TextOfWindow(window));
      return true;
    case ControlKind::kChoice:
    case ControlKind::kColorCombo:
    case ControlKind::kFaceList: {
      const bool is_list = row->kind == ControlKind::kFaceList;
      if (shows_ || notification != (is_list ? LBN_SELCHANGE : CBN_SELCHANGE)) return false;
      const LRESULT chosen = SendMessageW(window, is_list ? LB_GETCURSEL : CB_GETCURSEL, 0, 0);
      if (chosen >= 0) presenter_->Selected(id, static_cast<size_t>(chosen));
      return true;
    }
    default:
      return false;
  }
}

bool CutPage::FollowLink(int id) {
  const auto index = static_cast<size_t>(id - kFirstLink);
  if (id < kFirstLink || index >= links_.size()) return false;
  presenter_->LinkFollowed(links_[index].number);
  return true;
}

bool CutPage::TakesKey(const MSG& message) {
  if (message.message != WM_KEYDOWN || message.wParam != VK_ESCAPE) return false;
  const HWND search = Of(ControlId::kFaceSearch).window;
  if (message.hwnd != search || GetWindowTextLengthW(search) == 0) return false;
  return Command(kEmptySearch, BN_CLICKED);
}

LRESULT CutPage::Notify(const NMHDR& header) {
  if (header.code != NM_CUSTOMDRAW) return 0;
  const bool is_link = static_cast<int>(header.idFrom) >= kFirstLink;
  const bool drawn = is_link ? DrawLinkButton(header) : DrawDarkButton(header);
  return drawn ? CDRF_SKIPDEFAULT : CDRF_DODEFAULT;
}

void CutPage::DrawItem(const DRAWITEMSTRUCT& item) {
  if (item.CtlType == ODT_MENU) return DrawMenuItem(window_, item);
  if (item.hwndItem == Of(ControlId::kFaceList).window) return faces_->Draw(item);
  DrawColorItem(item);
}

void CutPage::OpenMenu(ControlId id) {
  const Made& made = Of(id);
  popup_ = CreatePopupMenu();
  UINT_PTR number = 0;
  for (const MenuItem& item : made.items) {
    if (item.separator_before) AppendMenuW(popup_, MF_SEPARATOR, 0, nullptr);
    const UINT flags = static_cast<UINT>(MF_STRING) | (item.checked ? MF_CHECKED : MF_UNCHECKED) |
                       (item.enabled ? MF_ENABLED : MF_GRAYED);
    AppendMenuW(popup_, flags, ++number, ToWide(item.text).c_str());
  }
  if (IsDark()) ApplyLooksToMenu(popup_);
  RECT place{};
  GetWindowRect(made.window, &place);
  const int picked = TrackPopupMenuEx(popup_, TPM_RETURNCMD | TPM_LEFTBUTTON, place.left,
                                      place.bottom, window_, nullptr);
  DestroyMenu(std::exchange(popup_, nullptr));
  if (picked > 0) presenter_->Picked(id, static_cast<size_t>(picked - 1));
}

// Controls of the panel

LRESULT CALLBACK CutPage::ChildProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam,
                                    UINT_PTR id, DWORD_PTR data) {
  auto& self = *reinterpret_cast<CutPage*>(data);
  switch (message) {
    case WM_NCDESTROY:
      RemoveWindowSubclass(window, ChildProc, id);
      break;
    case WM_SETFOCUS:
      self.ShowWhole(window);
      break;
    case WM_MOUSEWHEEL: {  // a closed list would change its choice
      const auto number = static_cast<ControlId>(GetDlgCtrlID(window));
      const bool scrolls = number == ControlId::kFaceList || number == ControlId::kCutText;
      if (scrolls || SendMessageW(window, CB_GETDROPPEDSTATE, 0, 0) != 0) break;
      return SendMessageW(self.panel_, message, wparam, lparam);
    }
    case WM_PAINT: {
      if (window != self.text_->control()) break;
      const LRESULT result = DefSubclassProc(window, message, wparam, lparam);
      self.PaintPlaceholder();
      return result;
    }
    default:
      break;
  }
  return DefSubclassProc(window, message, wparam, lparam);
}

void CutPage::PaintPlaceholder() const {
  const HWND box = text_->control();
  if (GetWindowTextLengthW(box) > 0 || text_->IsComposing()) return;
  RECT place{};
  SendMessageW(box, EM_GETRECT, 0, reinterpret_cast<LPARAM>(&place));
  const HDC dc = GetDC(box);
  const HGDIOBJ before = SelectObject(dc, font_);
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, LookColor(COLOR_GRAYTEXT));
  const std::wstring hint = ToWide(Say(FindCutControl(ControlId::kCutText)->hint));
  place.left += Scaled(4);
  DrawTextW(dc, hint.c_str(), -1, &place, DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
  SelectObject(dc, before);
  ReleaseDC(box, dc);
}

// The preview

void CutPage::PaintPreview(HDC dc) {
  RECT frame{};
  GetClientRect(Of(ControlId::kCutPreview).window, &frame);
  if (frame.right <= 0 || frame.bottom <= 0) return;
  if (!picture_ || std::exchange(picture_is_stale_, false)) {
    picture_is_stale_ = false;
    picture_ = presenter_->PreviewPicture(LookColor(COLOR_WINDOW));
  }
  if (picture_) {
    Blit(dc, 0, 0, *picture_);
    ExcludeClipRect(dc, 0, 0, picture_->Width(), picture_->Height());
  }
  FillRect(dc, &frame, LookBrush(COLOR_WINDOW));
  SelectClipRgn(dc, nullptr);
  if (GetFocus() == Of(ControlId::kCutPreview).window) DrawFocusRect(dc, &frame);
}

LRESULT CALLBACK CutPage::PreviewProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam,
                                      UINT_PTR id, DWORD_PTR self) {
  if (message == WM_NCDESTROY) RemoveWindowSubclass(window, PreviewProc, id);
  return reinterpret_cast<CutPage*>(self)->ReceiveInPreview(message, wparam, lparam);
}

// With Ctrl or Alt the drawing is dragged out of the window as a file.
void CutPage::GrabPreview(POINT at, WPARAM keys) {
  const HWND preview = Of(ControlId::kCutPreview).window;
  SetFocus(preview);
  if ((keys & MK_CONTROL) != 0 || GetKeyState(VK_MENU) < 0) {
    POINT on_screen = at;
    ClientToScreen(preview, &on_screen);
    if (!DragDetect(preview, on_screen)) return;
    const std::filesystem::path file = presenter_->FileToDrag();
    if (!file.empty() && !DragFile(file)) {
      ShowStatus(Say(u"The file cannot be dragged."), StatusKind::kFailure, {});
    }
    return;
  }
  SetCapture(preview);
  presenter_->PreviewGrabbed(at.x / Density(), at.y / Density());
}

LRESULT CutPage::ReceiveInPreview(UINT message, WPARAM wparam, LPARAM lparam) {
  const HWND preview = Of(ControlId::kCutPreview).window;
  if (!presenter_) return DefSubclassProc(preview, message, wparam, lparam);
  const double x = GET_X_LPARAM(lparam) / Density();
  const double y = GET_Y_LPARAM(lparam) / Density();
  switch (message) {
    case WM_PAINT: {
      PAINTSTRUCT paint{};
      PaintPreview(BeginPaint(preview, &paint));
      EndPaint(preview, &paint);
      return 0;
    }
    case WM_ERASEBKGND:
      return 1;
    case WM_GETDLGCODE:
      return DLGC_WANTARROWS | DLGC_WANTCHARS;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
      InvalidateRect(preview, nullptr, FALSE);
      return 0;
    case WM_MOUSEWHEEL: {
      POINT at = {GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
      ScreenToClient(preview, &at);
      presenter_->PreviewZoomed(at.x / Density(), at.y / Density(),
                                static_cast<double>(GET_WHEEL_DELTA_WPARAM(wparam)) / WHEEL_DELTA);
      return 0;
    }
    case WM_LBUTTONDOWN:
      GrabPreview({GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)}, wparam);
      return 0;
    case WM_MOUSEMOVE:
      presenter_->PreviewPointedAt(x, y);
      return 0;
    case WM_LBUTTONUP:
    case WM_CAPTURECHANGED:
      presenter_->PreviewReleased();
      if (message == WM_LBUTTONUP) ReleaseCapture();
      return 0;
    case WM_LBUTTONDBLCLK:
      presenter_->PreviewDoubleClicked();
      return 0;
    case WM_KEYDOWN:
      if (presenter_->PreviewKeyPressed(NameOfKey(wparam))) return 0;
      break;
    default:
      break;
  }
  return DefSubclassProc(preview, message, wparam, lparam);
}

}  // namespace kerno
