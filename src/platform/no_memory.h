// Failures of the system for want of memory: their reason begins with these words, which alone tell
// them from others.
#pragma once

#include "platform/status.h"

namespace kerno {

inline constexpr char16_t kNoMemoryReason[] = u"not enough memory";

inline bool LacksMemory(const Status& status) {
  return status.why.starts_with(kNoMemoryReason);
}

}  // namespace kerno
