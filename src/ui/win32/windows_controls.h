// The system's headers of controls and dialogs, after the one that they need.
#pragma once

#include "platform/win32/windows_api.h"

// clang-format off
#include <commctrl.h>
#include <imm.h>
#include <richedit.h>
#include <shlobj.h>
#include <shobjidl.h>
#include <windowsx.h>
// clang-format on
