#include "ui/win32/control_hints.h"

#include <oleacc.h>

#include "app/controls.h"
#include "ui/win32/windows_controls.h"

namespace kerno {
namespace {

// Combo boxes are covered by their edits.
HWND EditOf(HWND control) {
  COMBOBOXINFO parts{};
  parts.cbSize = sizeof parts;
  return GetComboBoxInfo(control, &parts) ? parts.hwndItem : nullptr;
}

wchar_t* Wide(const char16_t* text) {
  // The structure's member is not constant; the tooltip window only reads it.
  return const_cast<wchar_t*>(reinterpret_cast<const wchar_t*>(text));
}

}  // namespace

HWND AddControlHints(HINSTANCE instance, HWND dialog) {
  const HWND hints = CreateWindowExW(
      WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_NOPREFIX, CW_USEDEFAULT,
      CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, dialog, nullptr, instance, nullptr);
  for (const ControlRow& row : Controls()) {
    const HWND control = GetDlgItem(dialog, static_cast<int>(row.id));
    if (*row.hint == u'\0' || control == nullptr) continue;
    for (const HWND part : {control, EditOf(control)}) {
      if (part == nullptr) continue;
      TOOLINFOW tool{};
      tool.cbSize = sizeof tool;
      tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
      tool.hwnd = dialog;
      tool.uId = reinterpret_cast<UINT_PTR>(part);
      tool.lpszText = Wide(row.hint);
      SendMessageW(hints, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
    }
  }
  return hints;
}

void AddControlNames(HWND dialog) {
  IAccPropServices* services = nullptr;
  if (FAILED(CoCreateInstance(CLSID_AccPropServices, nullptr, CLSCTX_INPROC_SERVER,
                              IID_IAccPropServices, reinterpret_cast<void**>(&services)))) {
    return;
  }
  for (const ControlRow& row : Controls()) {
    const HWND control = GetDlgItem(dialog, static_cast<int>(row.id));
    if (control == nullptr || *row.caption != u'\0' || *row.name == u'\0') continue;
    if (row.id == ControlId::kStatus) continue;  // its text is what it says
    services->SetHwndPropStr(control, static_cast<DWORD>(OBJID_CLIENT), CHILDID_SELF,
                             PROPID_ACC_NAME, Wide(row.name));
  }
  services->Release();
}

}  // namespace kerno
