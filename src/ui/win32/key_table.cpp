#include "ui/win32/key_table.h"

namespace kerno {

void AppendKeys(std::u16string_view shortcut, int command, std::vector<ACCEL>* keys) {
  ACCEL key{};
  key.fVirt = FVIRTKEY;
  key.cmd = static_cast<WORD>(command);
  const auto take = [&shortcut](std::u16string_view prefix) {
    if (!shortcut.starts_with(prefix)) return false;
    shortcut.remove_prefix(prefix.size());
    return true;
  };
  const auto append = [&](int code, int more = 0) {
    key.key = static_cast<WORD>(code);
    keys->push_back(key);
    if (more == 0) return;
    key.fVirt |= static_cast<BYTE>(more);
    keys->push_back(key);
  };
  for (;;) {
    if (take(u"Ctrl+")) {
      key.fVirt |= FCONTROL;
    } else if (take(u"Alt+")) {
      key.fVirt |= FALT;
    } else if (take(u"Shift+")) {
      key.fVirt |= FSHIFT;
    } else {
      break;
    }
  }
  if (shortcut == u"+") {
    append(VK_ADD);
    append(VK_OEM_PLUS, FSHIFT);  // with Shift on some keyboards
  } else if (shortcut == u"-") {
    append(VK_SUBTRACT);
    append(VK_OEM_MINUS);
  } else if (shortcut.size() == 1) {
    append(shortcut[0]);
  } else if (shortcut.size() == 2 && shortcut[0] == u'F') {
    append(VK_F1 + (shortcut[1] - u'1'));
  }
}

char16_t NameOfKey(WPARAM key) {
  switch (key) {
    case VK_ADD:
    case VK_OEM_PLUS:
      return u'+';
    case VK_SUBTRACT:
    case VK_OEM_MINUS:
      return u'-';
    case VK_NUMPAD0:
      return u'0';
    case VK_LEFT:
      return u'←';
    case VK_RIGHT:
      return u'→';
    case VK_UP:
      return u'↑';
    case VK_DOWN:
      return u'↓';
    default:
      return static_cast<char16_t>(key);  // keys of digits have the digits' numbers
  }
}

}  // namespace kerno
