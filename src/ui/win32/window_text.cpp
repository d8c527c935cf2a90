#include "ui/win32/window_text.h"

#include "platform/win32/wide_text.h"

namespace kerno {

std::u16string TextOfWindow(HWND window) {
  std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
  const int length = GetWindowTextW(window, text.data(), static_cast<int>(text.size()));
  text.resize(static_cast<size_t>(length));
  return FromWide(text);
}

std::u16string TextOfRow(HWND list, ListKind kind, LRESULT row) {
  const bool is_combo = kind == ListKind::kComboBox;
  const auto index = static_cast<WPARAM>(row);
  const LRESULT length = SendMessageW(list, is_combo ? CB_GETLBTEXTLEN : LB_GETTEXTLEN, index, 0);
  if (length < 0) return {};
  std::wstring text(static_cast<size_t>(length) + 1, L'\0');
  SendMessageW(list, is_combo ? CB_GETLBTEXT : LB_GETTEXT, index,
               reinterpret_cast<LPARAM>(text.data()));
  text.resize(static_cast<size_t>(length));
  return FromWide(text);
}

}  // namespace kerno
