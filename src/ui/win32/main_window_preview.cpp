// The preview's own painting and input.

#include "app/controls.h"
#include "ui/win32/control_drawing.h"
#include "ui/win32/key_table.h"
#include "ui/win32/looks.h"
#include "ui/win32/main_window.h"
#include "ui/win32/windows_controls.h"

namespace kerno {
namespace {

constexpr double kDensity = 1;  // the frame counts in the screen's own pixels

}  // namespace

void MainWindow::PaintPreview(HDC dc) {
  RECT frame{};
  GetClientRect(Item(ControlId::kPreview), &frame);
  if (frame.right <= 0 || frame.bottom <= 0) return;
  if (!picture_ || picture_is_stale_) {
    picture_is_stale_ = false;
    picture_ = presenter_->PreviewPicture(kDensity, LookColor(COLOR_WINDOW));
    if (!picture_) return;
  }
  Blit(dc, 0, 0, *picture_);
  if (GetFocus() == Item(ControlId::kPreview)) DrawFocusRect(dc, &frame);
}

LRESULT CALLBACK MainWindow::PreviewProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam,
                                         UINT_PTR id, DWORD_PTR self) {
  if (message == WM_NCDESTROY) RemoveWindowSubclass(window, PreviewProc, id);
  return reinterpret_cast<MainWindow*>(self)->ReceiveInPreview(message, wparam, lparam);
}

LRESULT MainWindow::ReceiveInPreview(UINT message, WPARAM wparam, LPARAM lparam) {
  const HWND preview = Item(ControlId::kPreview);
  if (!presenter_) return DefSubclassProc(preview, message, wparam, lparam);
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
      presenter_->PreviewZoomed(at.x, at.y,
                                static_cast<double>(GET_WHEEL_DELTA_WPARAM(wparam)) / WHEEL_DELTA);
      return 0;
    }
    case WM_LBUTTONDOWN:
      SetFocus(preview);
      SetCapture(preview);
      presenter_->PreviewGrabbed(GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam));
      return 0;
    case WM_MOUSEMOVE:
      presenter_->PreviewPointedAt(GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam));
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
