// Texts of windows and of the rows of their lists.
#pragma once

#include <string>

#include "platform/win32/windows_api.h"

namespace kerno {

std::u16string TextOfWindow(HWND window);

// Empty where there is no such row.
enum class ListKind { kListBox, kComboBox };
std::u16string TextOfRow(HWND list, ListKind kind, LRESULT row);

}  // namespace kerno
