// The stock system font, whose fields every font description starts from.
#pragma once

#include "platform/device_context.h"

namespace kerno {

// LOGFONT of the stock object SYSTEM_FONT.
LogFont SystemLogFont();

}  // namespace kerno
