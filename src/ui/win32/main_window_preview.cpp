// The preview's own painting and input.

#include "app/controls.h"
#include "ui/win32/main_window.h"
#include "ui/win32/windows_controls.h"

namespace kerno {
namespace {

constexpr double kDensity = 1;   // the frame counts in the screen's own pixels
constexpr double kKeyStep = 40;  // pixels by an arrow key

}  // namespace

void MainWindow::PaintPreview(HDC dc) {
  RECT frame{};
  GetClientRect(Item(ControlId::kPreview), &frame);
  if (frame.right <= 0 || frame.bottom <= 0) return;
  if (!picture_ || picture_is_stale_) {
    const Color paper = presenter_->PaperBehind(GetSysColor(COLOR_WINDOW));
    picture_ = CreateBitmapSurface(frame.right, frame.bottom, paper);
    if (!picture_) return;
    presenter_->PaintPreview(picture_->Context(), kDensity);
    picture_is_stale_ = false;
  }
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = picture_->Width();
  info.bmiHeader.biHeight = -picture_->Height();
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  const std::span<const uint8_t> pixels = picture_->Pixels();
  SetDIBitsToDevice(dc, 0, 0, static_cast<DWORD>(picture_->Width()),
                    static_cast<DWORD>(picture_->Height()), 0, 0, 0,
                    static_cast<UINT>(picture_->Height()), pixels.data(), &info, DIB_RGB_COLORS);
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
      drag_from_ = POINT{GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
      return 0;
    case WM_MOUSEMOVE: {
      if (!drag_from_) return 0;
      const POINT at = {GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
      presenter_->PreviewDragged(at.x - drag_from_->x, at.y - drag_from_->y);
      drag_from_ = at;
      return 0;
    }
    case WM_LBUTTONUP:
    case WM_CAPTURECHANGED:
      drag_from_.reset();
      if (message == WM_LBUTTONUP) ReleaseCapture();
      return 0;
    case WM_LBUTTONDBLCLK:
      presenter_->PreviewDoubleClicked();
      return 0;
    case WM_KEYDOWN:
      if (PreviewKey(wparam)) return 0;
      break;
    default:
      break;
  }
  return DefSubclassProc(preview, message, wparam, lparam);
}

bool MainWindow::PreviewKey(WPARAM key) {
  RECT frame{};
  GetClientRect(Item(ControlId::kPreview), &frame);
  const double x = frame.right / 2.0;
  const double y = frame.bottom / 2.0;
  switch (key) {
    case VK_ADD:
    case VK_OEM_PLUS:
      presenter_->PreviewZoomed(x, y, 1);
      return true;
    case VK_SUBTRACT:
    case VK_OEM_MINUS:
      presenter_->PreviewZoomed(x, y, -1);
      return true;
    case '0':
    case VK_NUMPAD0:
      presenter_->PreviewDoubleClicked();
      return true;
    case VK_LEFT:
      presenter_->PreviewDragged(kKeyStep, 0);
      return true;
    case VK_RIGHT:
      presenter_->PreviewDragged(-kKeyStep, 0);
      return true;
    case VK_UP:
      presenter_->PreviewDragged(0, kKeyStep);
      return true;
    case VK_DOWN:
      presenter_->PreviewDragged(0, -kKeyStep);
      return true;
    default:
      return false;
  }
}

}  // namespace kerno
