#include "ui/win32/control_hints.h"

#include <oleacc.h>

#include "app/captions.h"
#include "app/controls.h"
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

wchar_t* Wide(const char16_t* text) {
  // The structure's member is not constant; the tooltip window only reads it.
  return const_cast<wchar_t*>(reinterpret_cast<const wchar_t*>(text));
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

HWND AddControlHints(HINSTANCE instance, HWND dialog) {
  const HWND hints = CreateWindowExW(
      WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_NOPREFIX, CW_USEDEFAULT,
      CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, dialog, nullptr, instance, nullptr);
  for (const ControlRow& row : Controls()) {
    const HWND control = GetDlgItem(dialog, static_cast<int>(row.id));
    const bool has_hint = *row.hint != u'\0' || row.id == ControlId::kStatus;
    if (!has_hint || control == nullptr) continue;
    for (const HWND part : {control, EditOf(control)}) {
      if (part == nullptr) continue;
      const TOOLINFOW tool = ToolOf(dialog, part, Wide(row.hint));
      SendMessageW(hints, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
    }
  }
  RECT client{};
  GetClientRect(dialog, &client);
  SendMessageW(hints, TTM_SETMAXTIPWIDTH, 0, client.right);  // longer ones take several lines
  return hints;
}

void ChangeHint(HWND hints, HWND dialog, HWND control, std::wstring text) {
  for (const HWND part : {control, EditOf(control)}) {
    if (part == nullptr) continue;
    const TOOLINFOW tool = ToolOf(dialog, part, text.data());
    SendMessageW(hints, TTM_UPDATETIPTEXTW, 0, reinterpret_cast<LPARAM>(&tool));
  }
}

void AddControlNames(HWND dialog) {
  Interface<IAccPropServices> services;
  CoCreateInstance(CLSID_AccPropServices, nullptr, CLSCTX_INPROC_SERVER, IID_IAccPropServices,
                   services.put_void());
  if (!services) return;
  for (const ControlRow& row : Controls()) {
    const HWND control = GetDlgItem(dialog, static_cast<int>(row.id));
    if (control == nullptr || *row.caption != u'\0' || *row.name == u'\0') continue;
    if (row.id == ControlId::kStatus) continue;  // its text is what it says
    services->SetHwndPropStr(control, static_cast<DWORD>(OBJID_CLIENT), CHILDID_SELF,
                             PROPID_ACC_NAME, ToWide(Say(row.name)).c_str());
  }
}

}  // namespace kerno
