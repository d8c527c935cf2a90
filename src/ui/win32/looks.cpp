#include "ui/win32/looks.h"

#include <dwmapi.h>
#include <uxtheme.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>
#include <string>
#include <utility>

#include "platform/win32/wide_text.h"
#include "ui/win32/window_text.h"
#include "ui/win32/windows_controls.h"

namespace kerno {
namespace {

constexpr UINT_PTR kSubclass = 0x4C6F;
constexpr wchar_t kFault[] = L"KernoFault";
constexpr COLORREF kRed = RGB(200, 30, 30);
constexpr COLORREF kLink = RGB(0, 90, 180);
constexpr COLORREF kLinkOnDark = RGB(110, 175, 255);
constexpr int kReadable = 90;  // lightness between a word and its ground, of 255
constexpr COLORREF kRedOnDark = RGB(255, 110, 110);
constexpr DWORD kDarkTitle = 20;  // DWMWA_USE_IMMERSIVE_DARK_MODE

struct DarkColor {
  int part;
  COLORREF color;
};
constexpr DarkColor kDark[] = {
    {COLOR_WINDOW, RGB(30, 30, 32)},           {COLOR_WINDOWTEXT, RGB(240, 240, 240)},
    {COLOR_BTNFACE, RGB(44, 44, 47)},          {COLOR_BTNTEXT, RGB(240, 240, 240)},
    {COLOR_GRAYTEXT, RGB(140, 140, 145)},      {COLOR_HIGHLIGHT, RGB(0, 95, 184)},
    {COLOR_HIGHLIGHTTEXT, RGB(255, 255, 255)}, {COLOR_BTNSHADOW, RGB(92, 92, 97)},
    {COLOR_3DLIGHT, RGB(62, 62, 66)},          {COLOR_BTNHIGHLIGHT, RGB(78, 78, 83)},
    {COLOR_INFOBK, RGB(56, 56, 60)},           {COLOR_INFOTEXT, RGB(240, 240, 240)},
};

struct Looks {
  bool is_dark = false;
  std::array<HBRUSH, std::size(kDark)> brushes{};
};

Looks& Current() {
  static Looks looks;
  return looks;
}

const DarkColor* FindDark(int part) {
  if (!IsDark()) return nullptr;
  const auto* const found = std::find_if(std::begin(kDark), std::end(kDark),
                                         [part](const DarkColor& c) { return c.part == part; });
  return found == std::end(kDark) ? nullptr : found;
}

bool UserWantsDark() {
  HIGHCONTRASTW contrast{};
  contrast.cbSize = sizeof contrast;
  if (SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0) &&
      (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0) {
    return false;
  }
  DWORD light = 1;
  DWORD size = sizeof light;
  RegGetValueW(HKEY_CURRENT_USER,
               L"Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize",
               L"AppsUseLightTheme", RRF_RT_REG_DWORD, nullptr, &light, &size);
  return light == 0;
}

// Painting of what the system draws light only

bool IsOfClass(HWND window, const wchar_t* name) {
  wchar_t own[32] = {};
  GetClassNameW(window, own, static_cast<int>(std::size(own)));
  return lstrcmpiW(own, name) == 0;
}

int DensityOf(HWND window) {
  return static_cast<int>(GetDpiForWindow(window));
}

void Polyline(HDC dc, COLORREF color, int width, const POINT* points, int count) {
  const HPEN pen = CreatePen(PS_SOLID, width, color);
  const HGDIOBJ before = SelectObject(dc, pen);
  ::Polyline(dc, points, count);
  SelectObject(dc, before);
  DeleteObject(pen);
}

// An arrow head in the middle of a place, pointing down, or up.
void DrawArrow(HDC dc, const RECT& place, int size, int down, COLORREF color) {
  const int x = (place.left + place.right) / 2;
  const int y = (place.top + place.bottom) / 2;
  const POINT points[] = {{x - size, y - down * size / 2},
                          {x, y + down * size / 2},
                          {x + size + 1, y - down * (size / 2 + 1)}};
  Polyline(dc, color, std::max(1, size / 3), points, 3);
}

int Lightness(COLORREF color) {
  return (299 * GetRValue(color) + 587 * GetGValue(color) + 114 * GetBValue(color)) / 1000;
}

// The system's own, where that can be read: some schemes have it almost as light as the ground.
COLORREF LinkColor() {
  if (IsDark()) return kLinkOnDark;
  const COLORREF own = GetSysColor(COLOR_HOTLIGHT);
  const int apart = Lightness(GetSysColor(COLOR_BTNFACE)) - Lightness(own);
  return std::abs(apart) < kReadable ? kLink : own;
}

COLORREF TextColorOf(HWND control) {
  return LookColor(IsWindowEnabled(control) ? COLOR_BTNTEXT : COLOR_GRAYTEXT);
}

void PaintCombo(HWND combo) {
  PAINTSTRUCT paint{};
  const HDC dc = BeginPaint(combo, &paint);
  RECT client{};
  GetClientRect(combo, &client);
  COMBOBOXINFO parts{};
  parts.cbSize = sizeof parts;
  GetComboBoxInfo(combo, &parts);
  FillRect(dc, &client, LookBrush(COLOR_WINDOW));
  FrameRect(dc, &client, LookBrush(COLOR_BTNSHADOW));
  DrawArrow(dc, parts.rcButton, MulDiv(4, DensityOf(combo), 96), 1, TextColorOf(combo));
  const auto style = GetWindowLongPtrW(combo, GWL_STYLE);
  if ((style & 3) == CBS_DROPDOWNLIST) {
    const auto row = SendMessageW(combo, CB_GETCURSEL, 0, 0);
    DRAWITEMSTRUCT item{};
    item.CtlType = ODT_COMBOBOX;
    item.CtlID = static_cast<UINT>(GetDlgCtrlID(combo));
    item.itemID = static_cast<UINT>(row);
    item.itemAction = ODA_DRAWENTIRE;
    item.itemState = ODS_COMBOBOXEDIT;
    if (GetFocus() == combo) item.itemState |= ODS_SELECTED | ODS_FOCUS;
    if (!IsWindowEnabled(combo)) item.itemState |= ODS_DISABLED;
    item.hwndItem = combo;
    item.hDC = dc;
    item.rcItem = parts.rcItem;
    item.itemData =
        static_cast<ULONG_PTR>(SendMessageW(combo, CB_GETITEMDATA, static_cast<WPARAM>(row), 0));
    SelectObject(dc, reinterpret_cast<HFONT>(SendMessageW(combo, WM_GETFONT, 0, 0)));
    if ((style & CBS_OWNERDRAWFIXED) != 0) {
      SendMessageW(GetParent(combo), WM_DRAWITEM, item.CtlID, reinterpret_cast<LPARAM>(&item));
    } else {
      const std::wstring text = ToWide(TextOfWindow(combo));
      SetBkMode(dc, TRANSPARENT);
      SetTextColor(dc, TextColorOf(combo));
      item.rcItem.left += 4;
      DrawTextW(dc, text.c_str(), -1, &item.rcItem,
                DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
      if (GetFocus() == combo) DrawFocusRect(dc, &parts.rcItem);
    }
  }
  EndPaint(combo, &paint);
}

void PaintUpDown(HWND control) {
  PAINTSTRUCT paint{};
  const HDC dc = BeginPaint(control, &paint);
  RECT upper{};
  GetClientRect(control, &upper);
  RECT lower = upper;
  upper.bottom = lower.top = upper.bottom / 2;
  const int size = MulDiv(3, DensityOf(control), 96);
  for (const auto& [place, down] : {std::pair(upper, -1), std::pair(lower, 1)}) {
    FillRect(dc, &place, LookBrush(COLOR_3DLIGHT));
    FrameRect(dc, &place, LookBrush(COLOR_BTNSHADOW));
    DrawArrow(dc, place, size, down, TextColorOf(control));
  }
  EndPaint(control, &paint);
}

// A line in the place of the sunken edge; a double red one round what is at fault.
void PaintEdge(HWND control) {
  const bool at_fault = GetPropW(control, kFault) != nullptr;
  const HBRUSH red = CreateSolidBrush(IsDark() ? kRedOnDark : kRed);
  const HDC dc = GetWindowDC(control);
  RECT frame{};
  GetWindowRect(control, &frame);
  OffsetRect(&frame, -frame.left, -frame.top);
  FrameRect(dc, &frame, at_fault ? red : LookBrush(COLOR_BTNSHADOW));
  for (int i = 1; i < GetSystemMetrics(SM_CXEDGE); ++i) {
    InflateRect(&frame, -1, -1);
    FrameRect(dc, &frame, at_fault ? red : LookBrush(COLOR_WINDOW));
  }
  ReleaseDC(control, dc);
  DeleteObject(red);
}

// Systems before Windows 10 1809 draw light scroll bars only.
bool HasDarkScrollBars() {
  static const bool has = [] {
    const HTHEME theme = OpenThemeData(nullptr, L"DarkMode_Explorer::ScrollBar");
    if (theme != nullptr) CloseThemeData(theme);
    return theme != nullptr;
  }();
  return has;
}

void PaintScrollBar(HWND window) {
  SCROLLBARINFO bar{};
  bar.cbSize = sizeof bar;
  if (!GetScrollBarInfo(window, static_cast<LONG>(OBJID_VSCROLL), &bar)) return;
  if ((bar.rgstate[0] & (STATE_SYSTEM_INVISIBLE | STATE_SYSTEM_OFFSCREEN)) != 0) return;
  RECT frame{};
  GetWindowRect(window, &frame);
  RECT track = bar.rcScrollBar;
  OffsetRect(&track, -frame.left, -frame.top);
  const bool moves = (bar.rgstate[0] & STATE_SYSTEM_UNAVAILABLE) == 0;
  const COLORREF ink = LookColor(moves ? COLOR_BTNTEXT : COLOR_GRAYTEXT);
  const int size = MulDiv(3, DensityOf(window), 96);
  const HDC dc = GetWindowDC(window);
  FillRect(dc, &track, LookBrush(COLOR_BTNFACE));
  const RECT up = {track.left, track.top, track.right, track.top + bar.dxyLineButton};
  const RECT down = {track.left, track.bottom - bar.dxyLineButton, track.right, track.bottom};
  DrawArrow(dc, up, size, -1, ink);
  DrawArrow(dc, down, size, 1, ink);
  const RECT thumb = {track.left + 2, track.top + bar.xyThumbTop, track.right - 2,
                      track.top + bar.xyThumbBottom};
  if (moves && thumb.bottom > thumb.top) FillRect(dc, &thumb, LookBrush(COLOR_BTNSHADOW));
  ReleaseDC(window, dc);
}

// Whether the system may have drawn the scroll bar within the message.
bool ShowsScrollBar(UINT message) {
  constexpr UINT kMessages[] = {WM_NCPAINT,      WM_PAINT,     WM_VSCROLL,       WM_MOUSEWHEEL,
                                WM_KEYDOWN,      WM_CHAR,      WM_NCLBUTTONDOWN, WM_NCMOUSEMOVE,
                                WM_NCMOUSELEAVE, WM_MOUSEMOVE, WM_LBUTTONDOWN};
  return std::find(std::begin(kMessages), std::end(kMessages), message) != std::end(kMessages);
}

// What no item of the menu bar covers, and the light line under the bar.
void PaintBarRest(HWND window) {
  const HMENU menu = GetMenu(window);
  MENUBARINFO bar{};
  bar.cbSize = sizeof bar;
  MENUBARINFO last = bar;
  if (menu == nullptr || !GetMenuBarInfo(window, OBJID_MENU, 0, &bar) ||
      !GetMenuBarInfo(window, OBJID_MENU, GetMenuItemCount(menu), &last)) {
    return;
  }
  RECT frame{};
  GetWindowRect(window, &frame);
  OffsetRect(&bar.rcBar, -frame.left, -frame.top);
  OffsetRect(&last.rcBar, -frame.left, -frame.top);
  const RECT rest = {last.rcBar.right, bar.rcBar.top, bar.rcBar.right, bar.rcBar.bottom};
  const RECT line = {bar.rcBar.left, bar.rcBar.bottom, bar.rcBar.right, bar.rcBar.bottom + 1};
  const HDC dc = GetWindowDC(window);
  FillRect(dc, &rest, LookBrush(COLOR_BTNFACE));
  FillRect(dc, &line, LookBrush(COLOR_BTNFACE));
  ReleaseDC(window, dc);
}

LRESULT CALLBACK DarkProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR id,
                          DWORD_PTR /*data*/) {
  if (message == WM_NCDESTROY) {
    RemoveWindowSubclass(window, DarkProc, id);
    RemovePropW(window, kFault);
  }
  if (!IsDark() && GetPropW(window, kFault) == nullptr)
    return DefSubclassProc(window, message, wparam, lparam);
  if (IsDark() && message == WM_PAINT && wparam == 0) {
    if (IsOfClass(window, L"COMBOBOX")) {
      PaintCombo(window);
      if (GetPropW(window, kFault) != nullptr) PaintEdge(window);
      return 0;
    }
    if (IsOfClass(window, UPDOWN_CLASSW)) return PaintUpDown(window), 0;
  }
  const LRESULT result = DefSubclassProc(window, message, wparam, lparam);
  const bool is_edge = (GetWindowLongPtrW(window, GWL_EXSTYLE) & WS_EX_CLIENTEDGE) != 0
                           ? message == WM_NCPAINT
                           : message == WM_PAINT && GetPropW(window, kFault) != nullptr;
  if (is_edge) PaintEdge(window);
  if (!IsDark()) return result;
  const bool has_bar = (GetWindowLongPtrW(window, GWL_STYLE) & WS_VSCROLL) != 0;
  if (has_bar && ShowsScrollBar(message) && !HasDarkScrollBars()) PaintScrollBar(window);
  const bool is_frame = message == WM_NCPAINT || message == WM_NCACTIVATE;
  if (is_frame && (GetWindowLongPtrW(window, GWL_STYLE) & WS_CHILD) == 0) PaintBarRest(window);
  return result;
}

void ApplyTo(HWND window, const wchar_t* dark_theme) {
  SetWindowTheme(window, IsDark() ? dark_theme : nullptr, nullptr);
  SetWindowSubclass(window, DarkProc, kSubclass, 0);
}

// Colours of its own are taken by one without a theme only.
void ApplyToProgress(HWND bar) {
  const wchar_t* const theme = IsDark() ? L"" : nullptr;
  SetWindowTheme(bar, theme, theme);
  SendMessageW(bar, PBM_SETBKCOLOR, 0, IsDark() ? LookColor(COLOR_WINDOW) : CLR_DEFAULT);
  SendMessageW(bar, PBM_SETBARCOLOR, 0, IsDark() ? LookColor(COLOR_HIGHLIGHT) : CLR_DEFAULT);
}

BOOL CALLBACK ApplyToChild(HWND child, LPARAM /*unused*/) {
  if (IsOfClass(child, PROGRESS_CLASSW)) return ApplyToProgress(child), TRUE;
  COMBOBOXINFO parts{};
  parts.cbSize = sizeof parts;
  if (!GetComboBoxInfo(child, &parts)) return ApplyTo(child, L"DarkMode_Explorer"), TRUE;
  ApplyTo(child, L"DarkMode_CFD");
  ApplyTo(parts.hwndList, L"DarkMode_Explorer");
  return TRUE;
}

// Buttons

void DrawMark(HDC dc, HWND button, const RECT& box, bool round) {
  const int inner = std::max(2, static_cast<int>(box.right - box.left) / 4);
  const COLORREF ink = LookColor(COLOR_HIGHLIGHTTEXT);
  RECT dot = box;
  InflateRect(&dot, -inner, -inner);
  if (round) {
    const HBRUSH brush = CreateSolidBrush(ink);
    const HGDIOBJ before = SelectObject(dc, brush);
    Ellipse(dc, dot.left, dot.top, dot.right, dot.bottom);
    SelectObject(dc, before);
    DeleteObject(brush);
    return;
  }
  const POINT points[] = {{dot.left, (dot.top + dot.bottom) / 2},
                          {dot.left + (dot.right - dot.left) * 2 / 5, dot.bottom - 1},
                          {dot.right, dot.top}};
  Polyline(dc, ink, std::max(1, MulDiv(2, DensityOf(button), 96)), points, 3);
}

// Draws the box of a check or radio button at the left and returns where its text begins.
LONG DrawBox(HDC dc, HWND button, const RECT& place, bool round) {
  const int side = MulDiv(13, DensityOf(button), 96);
  RECT box = {place.left, (place.top + place.bottom - side) / 2, place.left + side, 0};
  box.bottom = box.top + side;
  const bool checked = SendMessageW(button, BM_GETCHECK, 0, 0) == BST_CHECKED;
  const int ground = checked ? COLOR_HIGHLIGHT : COLOR_WINDOW;
  const HPEN pen = CreatePen(PS_SOLID, 1, LookColor(checked ? COLOR_HIGHLIGHT : COLOR_GRAYTEXT));
  const HGDIOBJ pen_before = SelectObject(dc, pen);
  const HGDIOBJ brush_before = SelectObject(dc, LookBrush(ground));
  if (round) {
    Ellipse(dc, box.left, box.top, box.right, box.bottom);
  } else {
    Rectangle(dc, box.left, box.top, box.right, box.bottom);
  }
  if (checked) DrawMark(dc, button, box, round);
  SelectObject(dc, brush_before);
  SelectObject(dc, pen_before);
  DeleteObject(pen);
  return box.right + side / 2;
}

}  // namespace

bool LearnLooks() {
  const bool dark = UserWantsDark();
  return std::exchange(Current().is_dark, dark) != dark;
}

bool IsDark() {
  return Current().is_dark;
}

COLORREF LookColor(int part) {
  const DarkColor* const dark = FindDark(part);
  return dark ? dark->color : GetSysColor(part);
}

HBRUSH LookBrush(int part) {
  const DarkColor* const dark = FindDark(part);
  if (dark == nullptr) return GetSysColorBrush(part);
  HBRUSH& brush = Current().brushes[static_cast<size_t>(dark - kDark)];
  if (brush == nullptr) brush = CreateSolidBrush(dark->color);
  return brush;
}

void ApplyLooks(HWND window) {
  const BOOL dark = IsDark();
  (void)DwmSetWindowAttribute(window, kDarkTitle, &dark,
                              sizeof dark);  // before Windows 10 2004: none
  ApplyTo(window, L"DarkMode_Explorer");
  EnumChildWindows(window, ApplyToChild, 0);
  RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
}

// Colours of their own are taken by hints without a theme only.
void ApplyLooksToHints(HWND hints) {
  const wchar_t* const theme = IsDark() ? L"" : nullptr;
  SetWindowTheme(hints, theme, theme);
  SendMessageW(hints, TTM_SETTIPBKCOLOR, LookColor(COLOR_INFOBK), 0);
  SendMessageW(hints, TTM_SETTIPTEXTCOLOR, LookColor(COLOR_INFOTEXT), 0);
}

std::optional<INT_PTR> AnswerInLooks(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
  switch (message) {
    case WM_INITDIALOG:
      ApplyLooks(dialog);
      return std::nullopt;
    case WM_CTLCOLORDLG:
    case WM_CTLCOLORBTN:
    case WM_CTLCOLOREDIT:
    case WM_CTLCOLORLISTBOX:
    case WM_CTLCOLORSTATIC:
      if (!IsDark()) return std::nullopt;
      return reinterpret_cast<INT_PTR>(ControlBrush(message, reinterpret_cast<HDC>(wparam)));
    case WM_NOTIFY: {
      const auto& header = *reinterpret_cast<const NMHDR*>(lparam);
      if (header.code != NM_CUSTOMDRAW || !DrawDarkButton(header)) return std::nullopt;
      SetWindowLongPtrW(dialog, DWLP_MSGRESULT, CDRF_SKIPDEFAULT);
      return TRUE;
    }
    default:
      return std::nullopt;
  }
}

void MarkFault(HWND field, bool at_fault) {
  if (at_fault) {
    SetPropW(field, kFault, field);
  } else {
    RemovePropW(field, kFault);
  }
  RedrawWindow(field, nullptr, nullptr, RDW_INVALIDATE | RDW_FRAME);
}

bool DrawDarkButton(const NMHDR& header) {
  if (!IsDark() || !IsOfClass(header.hwndFrom, L"BUTTON")) return false;
  const auto& draw = reinterpret_cast<const NMCUSTOMDRAW&>(header);
  if (draw.dwDrawStage != CDDS_PREERASE && draw.dwDrawStage != CDDS_PREPAINT) return false;
  const HWND button = header.hwndFrom;
  const auto style = GetWindowLongPtrW(button, GWL_STYLE);
  const auto type = style & BS_TYPEMASK;
  const bool radio = type == BS_AUTORADIOBUTTON || type == BS_RADIOBUTTON;
  const bool boxed =
      (radio || type == BS_AUTOCHECKBOX || type == BS_CHECKBOX) && (style & BS_PUSHLIKE) == 0;
  const auto state = SendMessageW(button, BM_GETSTATE, 0, 0);
  const bool down = (state & BST_PUSHED) != 0 || (!boxed && (state & BST_CHECKED) != 0);
  RECT place{};
  GetClientRect(button, &place);
  UINT format = DT_SINGLELINE | DT_VCENTER;
  if (boxed) {
    FillRect(draw.hdc, &place, LookBrush(COLOR_BTNFACE));
    place.left = DrawBox(draw.hdc, button, place, radio);
  } else {
    const bool hot = (state & BST_HOT) != 0;
    FillRect(draw.hdc, &place,
             LookBrush(down  ? COLOR_HIGHLIGHT
                       : hot ? COLOR_BTNHIGHLIGHT
                             : COLOR_3DLIGHT));
    const bool main = type == BS_DEFPUSHBUTTON;
    FrameRect(draw.hdc, &place, LookBrush(main ? COLOR_HIGHLIGHT : COLOR_BTNSHADOW));
    format |= DT_CENTER;
  }
  if ((SendMessageW(button, WM_QUERYUISTATE, 0, 0) & UISF_HIDEACCEL) != 0) format |= DT_HIDEPREFIX;
  const std::wstring caption = ToWide(TextOfWindow(button));
  SelectObject(draw.hdc, reinterpret_cast<HFONT>(SendMessageW(button, WM_GETFONT, 0, 0)));
  SetBkMode(draw.hdc, TRANSPARENT);
  SetTextColor(draw.hdc, TextColorOf(button));
  DrawTextW(draw.hdc, caption.c_str(), -1, &place, format);
  if (GetFocus() == button && (SendMessageW(button, WM_QUERYUISTATE, 0, 0) & UISF_HIDEFOCUS) == 0) {
    if (!boxed) InflateRect(&place, -3, -3);
    DrawFocusRect(draw.hdc, &place);
  }
  return true;
}

bool DrawLinkButton(const NMHDR& header) {
  const auto& draw = reinterpret_cast<const NMCUSTOMDRAW&>(header);
  if (draw.dwDrawStage != CDDS_PREERASE && draw.dwDrawStage != CDDS_PREPAINT) return false;
  const HWND button = header.hwndFrom;
  RECT place{};
  GetClientRect(button, &place);
  FillRect(draw.hdc, &place, LookBrush(COLOR_BTNFACE));
  LOGFONTW font{};
  GetObjectW(reinterpret_cast<HFONT>(SendMessageW(button, WM_GETFONT, 0, 0)), sizeof font, &font);
  font.lfUnderline = TRUE;
  const HFONT underlined = CreateFontIndirectW(&font);
  const HGDIOBJ before = SelectObject(draw.hdc, underlined);
  SetBkMode(draw.hdc, TRANSPARENT);
  SetTextColor(draw.hdc, LinkColor());
  const std::wstring caption = ToWide(TextOfWindow(button));
  DrawTextW(draw.hdc, caption.c_str(), -1, &place, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
  SelectObject(draw.hdc, before);
  DeleteObject(underlined);
  if (GetFocus() == button) DrawFocusRect(draw.hdc, &place);
  return true;
}

HBRUSH ControlBrush(UINT message, HDC dc) {
  const bool is_field = message == WM_CTLCOLOREDIT || message == WM_CTLCOLORLISTBOX;
  const int ground = is_field ? COLOR_WINDOW : COLOR_BTNFACE;
  SetTextColor(dc, LookColor(is_field ? COLOR_WINDOWTEXT : COLOR_BTNTEXT));
  SetBkColor(dc, LookColor(ground));
  return LookBrush(ground);
}

}  // namespace kerno
