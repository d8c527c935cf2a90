#include "ui/win32/control_hints.h"

#include <oleacc.h>

#include "platform/win32/wide_text.h"
#include "ui/win32/interface.h"
#include "ui/win32/windows_controls.h"

namespace kerno {
namespace {

// Combo boxes are covered by their edits.
HWND EditOf(HWND control) {
  COMBOBOXINFO parts{};
  parts.cbSize = sizeof parts;
  return GetComboBoxInfo(control, &parts) ? parts.hwndItem : nullptr;
}

TOOLINFOW ToolOf(HWND dialog, HWND part, wchar_t* text) {
  TOOLINFOW tool{};
  tool.cbSize = sizeof tool;
  tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
  tool.hwnd = dialog;
  tool.uId = reinterpret_cast<UINT_PTR>(part);
  tool.lpszText = text;
  return tool;
}

}  // namespace

HWND MakeHints(HINSTANCE instance, HWND owner) {
  const HWND hints = CreateWindowExW(
      WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_NOPREFIX, CW_USEDEFAULT,
      CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, owner, nullptr, instance, nullptr);
  const int width = 50 * static_cast<int>(GetDpiForWindow(owner)) / 12;  // longer ones are broken
  SendMessageW(hints, TTM_SETMAXTIPWIDTH, 0, width);
  return hints;
}

void ShowHint(HWND hints, HWND parent, HWND control, std::u16string_view text) {
  std::wstring wide = ToWide(text);
  for (const HWND part : {control, EditOf(control)}) {
    if (part == nullptr) continue;
    const TOOLINFOW tool = ToolOf(parent, part, wide.data());
    SendMessageW(hints, TTM_DELTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
    if (!wide.empty()) SendMessageW(hints, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
  }
}

void NameControl(HWND control, std::u16string_view name) {
  Interface<IAccPropServices> services;
  CoCreateInstance(CLSID_AccPropServices, nullptr, CLSCTX_INPROC_SERVER, IID_IAccPropServices,
                   services.put_void());
  if (!services) return;
  services->SetHwndPropStr(control, static_cast<DWORD>(OBJID_CLIENT), CHILDID_SELF, PROPID_ACC_NAME,
                           ToWide(name).c_str());
}

}  // namespace kerno
