#include "base/notices.h"

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

}  // namespace

Notices& CurrentNotices() {
  return *current;
}

Notices* ReplaceNotices(Notices* notices) {
  Notices* before = current;
  current = notices ? notices : &silent;
  return before;
}

}  // namespace kerno
