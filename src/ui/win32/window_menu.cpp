#include "ui/win32/window_menu.h"

#include <algorithm>
#include <string>

#include "app/captions.h"
#include "platform/win32/wide_text.h"
#include "ui/win32/looks.h"
#include "ui/win32/windows_controls.h"

namespace kerno {
namespace {

std::wstring CaptionOf(const MenuRow& row) {
  std::wstring caption = ToWide(Say(row.caption));
  if (*row.shortcut != u'\0') caption += L"\t" + ToWide(row.shortcut);
  return caption;
}

void SetCaption(HMENU menu, int position, const std::wstring& caption) {
  MENUITEMINFOW info{};
  info.cbSize = sizeof info;
  info.fMask = MIIM_STRING;
  info.dwTypeData = const_cast<wchar_t*>(caption.c_str());  // only read
  SetMenuItemInfoW(menu, static_cast<UINT>(position), TRUE, &info);
}

struct ItemText {
  std::wstring caption;
  bool is_separator = false;
  bool in_bar = false;
};

ItemText TextAt(HMENU menu, int position) {
  wchar_t text[200] = {};
  MENUITEMINFOW info{};
  info.cbSize = sizeof info;
  info.fMask = MIIM_STRING | MIIM_FTYPE;
  info.dwTypeData = text;
  info.cch = static_cast<UINT>(std::size(text));
  GetMenuItemInfoW(menu, static_cast<UINT>(position), TRUE, &info);
  return {text, (info.fType & MFT_SEPARATOR) != 0};
}

// The item with that number: a command's, or a popup's own handle.
ItemText FindItem(HMENU menu, UINT number, bool in_bar) {
  for (int i = 0; i < GetMenuItemCount(menu); ++i) {
    const HMENU popup = GetSubMenu(menu, i);
    const bool is_it = popup != nullptr
                           ? static_cast<UINT>(reinterpret_cast<UINT_PTR>(popup)) == number
                           : GetMenuItemID(menu, i) == number;
    if (is_it) {
      ItemText text = TextAt(menu, i);
      text.in_bar = in_bar;
      return text;
    }
    if (popup == nullptr) continue;
    ItemText below = FindItem(popup, number, false);
    if (!below.caption.empty()) return below;
  }
  return {};
}

class MenuFont {
 public:
  explicit MenuFont(HDC dc) : dc_(dc) {
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    font_ = CreateFontIndirectW(&metrics.lfMenuFont);
    before_ = SelectObject(dc_, font_);
  }
  ~MenuFont() {
    SelectObject(dc_, before_);
    DeleteObject(font_);
  }
  MenuFont(const MenuFont&) = delete;
  MenuFont& operator=(const MenuFont&) = delete;

 private:
  HDC dc_;
  HFONT font_;
  HGDIOBJ before_;
};

}  // namespace

HMENU MakeWindowMenu() {
  const HMENU menu = CreateMenu();
  for (const MenuColumn& column : Menu()) {
    const HMENU popup = CreatePopupMenu();
    for (const MenuRow& row : column.rows) {
      if (row.separator_before) AppendMenuW(popup, MF_SEPARATOR, 0, nullptr);
      AppendMenuW(popup, MF_STRING, static_cast<UINT_PTR>(row.command), L"");
    }
    AppendMenuW(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(popup), L"");
  }
  ShowMenuCaptions(menu);
  return menu;
}

void ShowMenuCaptions(HMENU menu) {
  int column_at = 0;
  for (const MenuColumn& column : Menu()) {
    const HMENU popup = GetSubMenu(menu, column_at);
    SetCaption(menu, column_at++, ToWide(Say(column.caption)));
    int at = 0;
    for (const MenuRow& row : column.rows) {
      if (row.separator_before) ++at;
      SetCaption(popup, at++, CaptionOf(row));
    }
  }
}

void EnableMenu(HMENU menu, WindowMode mode) {
  for (const MenuColumn& column : Menu()) {
    for (const MenuRow& row : column.rows) {
      const bool enabled = mode == WindowMode::kClassic || !IsOfClassicAlone(row.command);
      EnableMenuItem(menu, static_cast<UINT>(row.command),
                     MF_BYCOMMAND | (enabled ? MF_ENABLED : MF_GRAYED));
    }
  }
}

void ApplyLooksToMenu(HMENU menu) {
  MENUINFO ground{};
  ground.cbSize = sizeof ground;
  ground.fMask = MIM_BACKGROUND | MIM_APPLYTOSUBMENUS;
  ground.hbrBack = IsDark() ? LookBrush(COLOR_BTNFACE) : nullptr;
  SetMenuInfo(menu, &ground);
  for (int i = 0; i < GetMenuItemCount(menu); ++i) {
    MENUITEMINFOW info{};
    info.cbSize = sizeof info;
    info.fMask = MIIM_FTYPE;
    GetMenuItemInfoW(menu, static_cast<UINT>(i), TRUE, &info);
    info.fType =
        IsDark() ? info.fType | MFT_OWNERDRAW : info.fType & ~static_cast<UINT>(MFT_OWNERDRAW);
    SetMenuItemInfoW(menu, static_cast<UINT>(i), TRUE, &info);
    if (const HMENU popup = GetSubMenu(menu, i)) ApplyLooksToMenu(popup);
  }
}

void MeasureMenuItem(HMENU menu, HWND owner, MEASUREITEMSTRUCT& item) {
  const ItemText text = FindItem(menu, item.itemID, true);
  const HDC dc = GetDC(owner);
  {
    const MenuFont font(dc);
    RECT place{};
    DrawTextW(dc, text.caption.c_str(), -1, &place, DT_SINGLELINE | DT_CALCRECT | DT_EXPANDTABS);
    const int high = static_cast<int>(place.bottom);
    const bool is_line = text.caption.empty();
    item.itemHeight = static_cast<UINT>(is_line ? high / 2 : high + high / 2);
    // The room of the mark at the left and of the key at the right is the menu's own.
    item.itemWidth = static_cast<UINT>(place.right + (text.in_bar ? 0 : 4 * high));
  }
  ReleaseDC(owner, dc);
}

void DrawMenuItem(HWND owner, const DRAWITEMSTRUCT& item) {
  const auto menu = reinterpret_cast<HMENU>(item.hwndItem);
  const bool in_bar = menu == GetMenu(owner);
  const ItemText text = FindItem(menu, item.itemID, in_bar);
  const bool chosen = (item.itemState & (ODS_SELECTED | ODS_HOTLIGHT)) != 0;
  const bool dull = (item.itemState & (ODS_GRAYED | ODS_DISABLED)) != 0;
  RECT place = item.rcItem;
  const int high = place.bottom - place.top;
  FillRect(item.hDC, &place, LookBrush(chosen ? COLOR_BTNHIGHLIGHT : COLOR_BTNFACE));
  if (text.caption.empty()) {
    const int middle = (place.top + place.bottom) / 2;
    const RECT line = {place.left + high, middle, place.right - high, middle + 1};
    FillRect(item.hDC, &line, LookBrush(COLOR_BTNSHADOW));
    return;
  }
  SetBkMode(item.hDC, TRANSPARENT);
  SetTextColor(item.hDC, LookColor(dull ? COLOR_GRAYTEXT : COLOR_BTNTEXT));
  const MenuFont font(item.hDC);
  UINT format = DT_SINGLELINE | DT_VCENTER;
  if ((item.itemState & ODS_NOACCEL) != 0) format |= DT_HIDEPREFIX;
  if (in_bar) {
    DrawTextW(item.hDC, text.caption.c_str(), -1, &place, format | DT_CENTER);
    return;
  }
  if ((item.itemState & ODS_CHECKED) != 0) {
    RECT mark = {place.left, place.top, place.left + high, place.bottom};
    DrawTextW(item.hDC, L"•", -1, &mark, format | DT_CENTER);
  }
  place.left += high;
  place.right -= high / 2;
  const size_t tab = std::min(text.caption.find(L'\t'), text.caption.size());
  DrawTextW(item.hDC, text.caption.c_str(), static_cast<int>(tab), &place, format);
  if (tab < text.caption.size()) {
    DrawTextW(item.hDC, text.caption.c_str() + tab + 1, -1, &place, format | DT_RIGHT);
  }
}

}  // namespace kerno
