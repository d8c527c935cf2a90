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
thread_local Notices* of_this_thread = nullptr;

}  // namespace

Notices& CurrentNotices() {
  return of_this_thread ? *of_this_thread : *current;
}

NoticesHere::NoticesHere(Notices* notices) : before_(std::exchange(of_this_thread, notices)) {}

NoticesHere::~NoticesHere() {
  of_this_thread = before_;
}

SilentHere::SilentHere() : here_(&silent) {}

Notices* ReplaceNotices(Notices* notices) {
  Notices* before = current;
  current = notices ? notices : &silent;
  return before;
}

}  // namespace kerno
