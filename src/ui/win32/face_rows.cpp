#include "ui/win32/face_rows.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

#include "platform/win32/wide_text.h"
#include "ui/win32/control_drawing.h"
#include "ui/win32/looks.h"
#include "ui/win32/windows_controls.h"

namespace kerno {
namespace {

constexpr UINT_PTR kSubclass = 1;
// In pixels of the first density.
constexpr int kRowHeight = 46;
constexpr int kNameHeight = 18;
constexpr int kStarWidth = 22;
constexpr COLORREF kStar = RGB(230, 160, 0);

// A row is drawn beside the screen first: it is drawn again for every key of the text.
class RowCanvas {
 public:
  explicit RowCanvas(const DRAWITEMSTRUCT& item)
      : target_(item.hDC),
        place_(item.rcItem),
        dc_(CreateCompatibleDC(item.hDC)),
        bitmap_(CreateCompatibleBitmap(item.hDC, Width(), Height())),
        before_(SelectObject(dc_, bitmap_)) {
    SelectObject(dc_, GetCurrentObject(item.hDC, OBJ_FONT));
    SetBkMode(dc_, TRANSPARENT);
  }
  ~RowCanvas() {
    BitBlt(target_, place_.left, place_.top, Width(), Height(), dc_, 0, 0, SRCCOPY);
    SelectObject(dc_, GetStockObject(SYSTEM_FONT));
    SelectObject(dc_, before_);
    DeleteObject(bitmap_);
    DeleteDC(dc_);
  }
  RowCanvas(const RowCanvas&) = delete;
  RowCanvas& operator=(const RowCanvas&) = delete;
  HDC dc() const { return dc_; }
  int Width() const { return place_.right - place_.left; }
  int Height() const { return place_.bottom - place_.top; }

 private:
  HDC target_;
  RECT place_;
  HDC dc_;
  HBITMAP bitmap_;
  HGDIOBJ before_;
};

void DrawLine(HDC dc, const std::u16string& text, RECT place, COLORREF ink, UINT format) {
  SetTextColor(dc, ink);
  const std::wstring wide = ToWide(text);
  DrawTextW(dc, wide.c_str(), static_cast<int>(wide.size()), &place,
            format | DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
}

}  // namespace

FaceRowList::FaceRowList(HWND list) : list_(list) {
  SetWindowSubclass(list_, ListProc, kSubclass, reinterpret_cast<DWORD_PTR>(this));
}

int FaceRowList::StarWidth() const {
  return MulDiv(kStarWidth, dpi_, USER_DEFAULT_SCREEN_DPI);
}

void FaceRowList::SetDensity(int dpi) {
  dpi_ = dpi;
  SendMessageW(list_, LB_SETITEMHEIGHT, 0, MulDiv(kRowHeight, dpi, USER_DEFAULT_SCREEN_DPI));
}

void FaceRowList::Show(std::vector<FaceListRow> rows, std::optional<size_t> selected) {
  const bool as_many = rows.size() == rows_.size();
  const LRESULT top = SendMessageW(list_, LB_GETTOPINDEX, 0, 0);
  rows_ = std::move(rows);
  SendMessageW(list_, WM_SETREDRAW, FALSE, 0);
  if (!as_many) SendMessageW(list_, LB_SETCOUNT, rows_.size(), 0);
  SendMessageW(list_, LB_SETCURSEL, selected ? *selected : static_cast<WPARAM>(-1), 0);
  if (as_many) SendMessageW(list_, LB_SETTOPINDEX, static_cast<WPARAM>(top), 0);
  SendMessageW(list_, WM_SETREDRAW, TRUE, 0);
  Repaint();
}

void FaceRowList::Draw(const DRAWITEMSTRUCT& item) const {
  if (item.itemID >= rows_.size()) return;
  const FaceListRow& row = rows_[item.itemID];
  const RowCanvas canvas(item);
  const HDC dc = canvas.dc();
  const bool selected = (item.itemState & ODS_SELECTED) != 0;
  const COLORREF ink = LookColor(selected ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT);
  const RECT all = {0, 0, canvas.Width(), canvas.Height()};
  FillRect(dc, &all, LookBrush(selected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
  const int name_height = MulDiv(kNameHeight, dpi_, USER_DEFAULT_SCREEN_DPI);
  const int left = StarWidth();
  const RECT star = {0, 0, left, name_height};
  const COLORREF dull = selected ? ink : LookColor(COLOR_GRAYTEXT);
  DrawLine(dc, row.favourite ? u"★" : u"☆", star, row.favourite && !selected ? kStar : dull,
           DT_CENTER);
  RECT name = {left, 0, canvas.Width() - 4, name_height};
  DrawLine(dc, row.name, name, ink, DT_LEFT);
  if (!row.note.empty()) {
    SIZE taken{};
    GetTextExtentPoint32W(dc, ToWide(row.name).c_str(), static_cast<int>(row.name.size()), &taken);
    name.left += taken.cx + left / 2;
    if (name.left < name.right) DrawLine(dc, row.note, name, dull, DT_RIGHT);
  }
  const int width = canvas.Width() - left - 4;
  const int height = canvas.Height() - name_height - 2;
  // All samples have the same colours: others would drop those that are made.
  const RECT under = {left, name_height, canvas.Width() - 2, canvas.Height() - 2};
  FillRect(dc, &under, LookBrush(COLOR_WINDOW));
  if (sample && width > 0 && height > 0) {
    const BitmapSurface* const picture =
        sample(item.itemID, width, height, LookColor(COLOR_WINDOWTEXT), LookColor(COLOR_WINDOW));
    if (picture != nullptr) Blit(dc, left, name_height, *picture);
  }
  if ((item.itemState & ODS_FOCUS) != 0 && (item.itemState & ODS_NOFOCUSRECT) == 0) {
    DrawFocusRect(dc, &all);
  }
}

bool FaceRowList::ClickStar(POINT at) const {
  if (at.x >= StarWidth()) return false;
  const LRESULT item = SendMessageW(list_, LB_ITEMFROMPOINT, 0, MAKELPARAM(at.x, at.y));
  if (HIWORD(item) != 0 || LOWORD(item) >= rows_.size()) return false;
  on_star(LOWORD(item));
  return true;
}

bool FaceRowList::TypeStar() const {
  const LRESULT row = SendMessageW(list_, LB_GETCURSEL, 0, 0);
  if (row < 0 || static_cast<size_t>(row) >= rows_.size()) return false;
  on_star(static_cast<size_t>(row));
  return true;
}

LRESULT CALLBACK FaceRowList::ListProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam,
                                       UINT_PTR id, DWORD_PTR data) {
  const auto& self = *reinterpret_cast<const FaceRowList*>(data);
  switch (message) {
    case WM_NCDESTROY:
      RemoveWindowSubclass(window, ListProc, id);
      break;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
      if (self.ClickStar({GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)})) return 0;
      break;
    case WM_CHAR:
      if ((wparam == L'f' || wparam == L'F') && self.TypeStar()) return 0;
      break;
    case WM_ERASEBKGND: {  // rows paint themselves; only what lies below them is left
      const auto dc = reinterpret_cast<HDC>(wparam);
      RECT rest{};
      GetClientRect(window, &rest);
      const auto count = static_cast<LONG>(self.rows_.size());
      const auto top = static_cast<LONG>(SendMessageW(window, LB_GETTOPINDEX, 0, 0));
      const auto high = static_cast<LONG>(SendMessageW(window, LB_GETITEMHEIGHT, 0, 0));
      rest.top = std::min(rest.bottom, (count - top) * high);
      FillRect(dc, &rest, LookBrush(COLOR_WINDOW));
      return 1;
    }
    default:
      break;
  }
  return DefSubclassProc(window, message, wparam, lparam);
}

}  // namespace kerno
