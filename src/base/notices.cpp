#include "base/notices.h"

#include <utility>

namespace kerno {
namespace {

class SilentNotices final : public Notices {
 public:
  void Message(std::u16string_view) override {}
  void ShowWait(std::u16string_view) override {}
  void ClearWait() override {}
  Continue Progress(std::u16string_view, int64_t, int64_t) override { return Continue::kYes; }
};

SilentNotices silent;
Notices* current = &silent;
thread_local bool is_silent_here = false;

}  // namespace

Notices& CurrentNotices() {
  return is_silent_here ? silent : *current;
}

SilentHere::SilentHere() : before_(std::exchange(is_silent_here, true)) {}

SilentHere::~SilentHere() {
  is_silent_here = before_;
}

Notices* ReplaceNotices(Notices* notices) {
  Notices* before = current;
  current = notices ? notices : &silent;
  return before;
}

}  // namespace kerno
