// The font of the window's captions.
#pragma once

#include "app/captions.h"
#include "platform/win32/windows_api.h"

namespace kerno {

// The system's font of messages; for Japanese captions one that has their characters.
LOGFONTW InterfaceFont(Language language, int dpi);

}  // namespace kerno
