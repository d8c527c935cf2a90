// The clipboard.
#pragma once

#include <string_view>

#include "platform/win32/windows_api.h"

namespace kerno {

// Whether it was taken: another program may hold the clipboard.
bool CopyToClipboard(HWND owner, std::u16string_view text);

// A picture: as "image/svg+xml" in UTF-8, and as text.
bool CopySvgToClipboard(HWND owner, std::string_view svg);

}  // namespace kerno
