#include "ui/win32/control_drawing.h"

#include <algorithm>
#include <string>
#include <vector>

#include "app/status_text.h"
#include "platform/win32/wide_text.h"
#include "ui/win32/looks.h"
#include "ui/win32/window_text.h"

namespace kerno {
namespace {

std::wstring ItemText(const DRAWITEMSTRUCT& item) {
  const ListKind kind = item.CtlType == ODT_LISTBOX ? ListKind::kListBox : ListKind::kComboBox;
  return ToWide(TextOfRow(item.hwndItem, kind, static_cast<LRESULT>(item.itemID)));
}

// Fills the item's ground and sets the text colour on it.
void DrawGround(const DRAWITEMSTRUCT& item) {
  const bool selected = (item.itemState & ODS_SELECTED) != 0;
  const bool disabled = (item.itemState & ODS_DISABLED) != 0;
  FillRect(item.hDC, &item.rcItem, LookBrush(selected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
  SetBkMode(item.hDC, TRANSPARENT);
  SetTextColor(item.hDC, LookColor(disabled   ? COLOR_GRAYTEXT
                                   : selected ? COLOR_HIGHLIGHTTEXT
                                              : COLOR_WINDOWTEXT));
}

void DrawFocus(const DRAWITEMSTRUCT& item) {
  if ((item.itemState & ODS_FOCUS) != 0 && (item.itemState & ODS_NOFOCUSRECT) == 0) {
    DrawFocusRect(item.hDC, &item.rcItem);
  }
}

// Whether letters written in the selected font can be read: a face of symbols has none.
bool HasLettersOf(HDC dc, const std::wstring& text) {
  TEXTMETRICW metrics{};
  GetTextMetricsW(dc, &metrics);
  if (metrics.tmCharSet == SYMBOL_CHARSET) return false;
  std::vector<WORD> glyphs(text.size());
  GetGlyphIndicesW(dc, text.c_str(), static_cast<int>(text.size()), glyphs.data(),
                   GGI_MARK_NONEXISTING_GLYPHS);
  return std::find(glyphs.begin(), glyphs.end(), WORD{0xFFFF}) == glyphs.end();
}

void DrawLabel(const DRAWITEMSTRUCT& item, const std::wstring& text, LONG left) {
  RECT place = item.rcItem;
  place.left = left;
  DrawTextW(item.hDC, text.c_str(), static_cast<int>(text.size()), &place,
            DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
}

}  // namespace

// All names stand on one line, whatever room their faces want above and below it.
void DrawFaceItem(const DRAWITEMSTRUCT& item) {
  DrawGround(item);
  if (item.itemID == static_cast<UINT>(-1)) return;
  const std::wstring name = ItemText(item);
  const int height = item.rcItem.bottom - item.rcItem.top;
  LOGFONTW description{};
  description.lfHeight = -height * 2 / 3;
  description.lfCharSet = DEFAULT_CHARSET;
  name.copy(description.lfFaceName, LF_FACESIZE - 1);
  const HFONT font = CreateFontIndirectW(&description);
  const HGDIOBJ before = SelectObject(item.hDC, font);
  if (!HasLettersOf(item.hDC, name)) SelectObject(item.hDC, before);
  const UINT align_before = SetTextAlign(item.hDC, TA_LEFT | TA_BASELINE);
  ExtTextOutW(item.hDC, item.rcItem.left + 4, item.rcItem.top + height * 3 / 4, ETO_CLIPPED,
              &item.rcItem, name.c_str(), static_cast<UINT>(name.size()), nullptr);
  SetTextAlign(item.hDC, align_before);
  SelectObject(item.hDC, before);
  DeleteObject(font);
  DrawFocus(item);
}

void DrawColorItem(const DRAWITEMSTRUCT& item) {
  DrawGround(item);
  if (item.itemID == static_cast<UINT>(-1)) return;
  RECT swatch = item.rcItem;
  InflateRect(&swatch, -3, -3);
  const LONG side = swatch.bottom - swatch.top;
  swatch.right = std::min(swatch.left + 2 * side, item.rcItem.right);
  const HBRUSH brush = CreateSolidBrush(static_cast<COLORREF>(item.itemData));
  FillRect(item.hDC, &swatch, brush);
  DeleteObject(brush);
  FrameRect(item.hDC, &swatch, LookBrush(COLOR_GRAYTEXT));
  DrawLabel(item, ItemText(item), swatch.right + 6);
  DrawFocus(item);
}

void Blit(HDC dc, int left, int top, const BitmapSurface& picture) {
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = picture.Width();
  info.bmiHeader.biHeight = -picture.Height();
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  SetDIBitsToDevice(
      dc, left, top, static_cast<DWORD>(picture.Width()), static_cast<DWORD>(picture.Height()), 0,
      0, 0, static_cast<UINT>(picture.Height()), picture.Pixels().data(), &info, DIB_RGB_COLORS);
}

HBRUSH StatusBrush(HDC dc, StatusKind kind) {
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, StatusInk(kind, LookColor(COLOR_BTNTEXT), LookColor(COLOR_BTNFACE)));
  return LookBrush(COLOR_BTNFACE);
}

}  // namespace kerno
