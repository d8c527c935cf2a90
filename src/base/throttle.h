// Pacing of messages about long operations.
#pragma once

#include <cstdint>
#include <string_view>

#include "base/notices.h"

namespace kerno {

// Answers whether enough time has passed since it last said yes: "Message"/"DrawTiming"
// milliseconds (default 100), read once per process.
class MessageThrottle {
 public:
  bool Due();

 private:
  uint32_t last_ = 0;  // ticks at the last yes
};

// Progress of a long operation, told to the notices no more often than the throttle allows.
class PacedProgress {
 public:
  // kNo once the user asked for an end.
  Continue Step(std::u16string_view text, int64_t done, int64_t total);

 private:
  MessageThrottle throttle_;
  Continue answer_ = Continue::kYes;
};

// The line that a progress display shows: "<text>  (<done>/<total>)  ".
std::u16string ProgressText(std::u16string_view text, int64_t done, int64_t total);

}  // namespace kerno
