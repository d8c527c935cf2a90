// Where the controls stand, and the preview's own painting and input.

#include <algorithm>

#include "app/controls.h"
#include "ui/win32/main_window.h"
#include "ui/win32/windows_controls.h"

namespace kerno {
namespace {

constexpr double kDensity = 1;   // the frame counts in the screen's own pixels
constexpr double kKeyStep = 40;  // pixels by an arrow key

constexpr ControlId kButtons[] = {ControlId::kDxf, ControlId::kSvg,    ControlId::kIpx,
                                  ControlId::kDib, ControlId::kUpload, ControlId::kEmf,
                                  ControlId::kIpl};

bool IsShown(HWND control) {
  return (GetWindowLongPtrW(control, GWL_STYLE) & WS_VISIBLE) != 0;
}

void Place(HWND control, int left, int top, int width, int height) {
  SetWindowPos(control, nullptr, left, top, std::max(width, 0), std::max(height, 0),
               SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace

// Text and paste button at the top, two rows of settings, the preview, the status, the outputs.
void MainWindow::LayOut() {
  if (!ready_ || IsIconic(window_)) return;
  RECT client{};
  GetClientRect(window_, &client);
  const int gap = Scaled(8);
  const int row = Scaled(26);
  const int button = Scaled(80);
  const int width = client.right - 2 * gap;
  const int status = Scaled(36);
  const int below = client.bottom - gap - row;  // where the row of buttons begins
  const int text_height = std::max(Scaled(60), static_cast<int>(client.bottom) / 5);
  int y = gap;

  Place(Item(ControlId::kText), gap, y, width - button - gap, text_height);
  Place(Item(ControlId::kPaste), client.right - gap - button, y, button, row);
  y += text_height + gap;

  const int label = Scaled(44);
  const int number = Scaled(90);
  const int vertical = Scaled(44);
  const int spin = Scaled(18);
  const int drop = client.bottom;  // the list's own length is set elsewhere
  int x = gap;
  const int face = width - 2 * label - vertical - 2 * number - spin - 4 * gap;
  Place(Item(ControlId::kFaceLabel), x, y + Scaled(4), label, row);
  Place(Item(ControlId::kFace), x += label, y, face, drop);
  Place(Item(ControlId::kVertical), x += face + gap, y, vertical, row);
  Place(Item(ControlId::kHeightLabel), x += vertical + gap, y + Scaled(4), label, row);
  Place(Item(ControlId::kHeightList), x += label, y, number, drop);
  Place(Item(ControlId::kHeightEdit), x += number + gap, y, number, row);
  Place(Item(ControlId::kHeightSpin), x += number, y, spin, row);
  y += row + gap;

  const int check = Scaled(110);
  const int color = Scaled(170);
  Place(Item(ControlId::kPolyPolygon), gap, y, check, row);
  Place(Item(ControlId::kFirstColor), gap + check, y, color, drop);
  Place(Item(ControlId::kSecondColor), gap + check + color + gap, y, color, drop);
  y += row + gap;

  const int preview = below - status - 2 * gap - y;
  Place(Item(ControlId::kPreview), gap, y, width, preview);
  Place(Item(ControlId::kStatus), gap, below - status - gap / 2, width, status);

  x = gap;
  for (const ControlId id : kButtons) {
    const HWND control = Item(id);
    if (!IsShown(control)) continue;
    Place(control, x, below, button, row);
    x += button + gap;
  }
  Place(Item(ControlId::kQuit), client.right - gap - button, below, button, row);

  RECT frame{};
  GetClientRect(Item(ControlId::kPreview), &frame);
  if (dialog_) dialog_->PreviewResized(frame.right, frame.bottom);
  picture_.reset();
  InvalidateRect(window_, nullptr, TRUE);
}

void MainWindow::SizeDropDowns() {
  if (!ready_ || IsIconic(window_)) return;
  RECT client{};
  GetClientRect(window_, &client);
  for (const ControlId id : {ControlId::kHeightList, ControlId::kFace, ControlId::kFirstColor,
                             ControlId::kSecondColor}) {
    const HWND combo = Item(id);
    RECT place{};
    GetWindowRect(combo, &place);
    POINT top = {place.left, place.top};
    ScreenToClient(window_, &top);
    const auto item = static_cast<int>(SendMessageW(combo, CB_GETITEMHEIGHT, 0, 0));
    const int rows = DropDownRows(client.bottom, top.y, item);
    SendMessageW(combo, CB_SETMINVISIBLE, static_cast<WPARAM>(rows), 0);
  }
}

void MainWindow::PaintPreview(HDC dc) {
  RECT frame{};
  GetClientRect(Item(ControlId::kPreview), &frame);
  if (frame.right <= 0 || frame.bottom <= 0) return;
  if (!picture_ || picture_is_stale_) {
    const Color paper = dialog_->PaperBehind(GetSysColor(COLOR_WINDOW));
    picture_ = CreateBitmapSurface(frame.right, frame.bottom, paper);
    if (!picture_) return;
    dialog_->PaintPreview(picture_->Context(), kDensity);
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
  if (!dialog_) return DefSubclassProc(preview, message, wparam, lparam);
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
      dialog_->PreviewZoomed(at.x, at.y,
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
      dialog_->PreviewDragged(at.x - drag_from_->x, at.y - drag_from_->y);
      drag_from_ = at;
      return 0;
    }
    case WM_LBUTTONUP:
    case WM_CAPTURECHANGED:
      drag_from_.reset();
      if (message == WM_LBUTTONUP) ReleaseCapture();
      return 0;
    case WM_LBUTTONDBLCLK:
      dialog_->PreviewDoubleClicked();
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
      dialog_->PreviewZoomed(x, y, 1);
      return true;
    case VK_SUBTRACT:
    case VK_OEM_MINUS:
      dialog_->PreviewZoomed(x, y, -1);
      return true;
    case '0':
    case VK_NUMPAD0:
      dialog_->PreviewDoubleClicked();
      return true;
    case VK_LEFT:
      dialog_->PreviewDragged(kKeyStep, 0);
      return true;
    case VK_RIGHT:
      dialog_->PreviewDragged(-kKeyStep, 0);
      return true;
    case VK_UP:
      dialog_->PreviewDragged(0, kKeyStep);
      return true;
    case VK_DOWN:
      dialog_->PreviewDragged(0, -kKeyStep);
      return true;
    default:
      return false;
  }
}

}  // namespace kerno
