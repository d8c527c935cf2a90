#include "base/throttle.h"

#include <string>

#include "base/profile_values.h"
#include "base/settings_places.h"
#include "base/settings_table.h"
#include "platform/clock.h"

namespace kerno {

bool MessageThrottle::Due() {
  std::optional<int32_t>& timing = SettingsProcess::Current().draw_timing;
  if (!timing) timing = Get(kDrawTiming);
  const uint32_t now = CurrentClock().Ticks();
  // Either way round, so that ticks that started again at 0 count as passed time.
  const uint32_t passed = now > last_ ? now - last_ : last_ - now;
  if (*timing > 0 && passed < static_cast<uint32_t>(*timing)) return false;
  last_ = now;
  return true;
}

Continue PacedProgress::Step(std::u16string_view text, int64_t done, int64_t total) {
  if (answer_ == Continue::kYes && throttle_.Due()) {
    answer_ = CurrentNotices().Progress(text, done, total);
  }
  return answer_;
}

std::u16string ProgressText(std::u16string_view text, int64_t done, int64_t total) {
  return std::u16string(text) + u"  (" + Int64Text(done) + u"/" + Int64Text(total) + u")  ";
}

}  // namespace kerno
