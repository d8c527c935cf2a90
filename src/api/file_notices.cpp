#include "api/file_notices.h"

#include <mutex>
#include <utility>

#include "base/notices.h"
#include "base/text.h"

namespace kerno {
namespace {

thread_local std::vector<std::string>* kept_here = nullptr;

class KeptNotices final : public Notices {
 public:
  void Message(std::u16string_view text) override {
    if (kept_here) kept_here->push_back(Utf16ToUtf8(text));
  }
  void ShowWait(std::u16string_view) override {}
  void ClearWait() override {}
  Continue Progress(std::u16string_view, int64_t, int64_t) override { return Continue::kYes; }
};

}  // namespace

FileNotices::FileNotices(std::vector<std::string>* texts)
    : before_(std::exchange(kept_here, texts)) {
  static std::once_flag once;
  std::call_once(once, [] {
    static KeptNotices notices;
    ReplaceNotices(&notices);
  });
}

FileNotices::~FileNotices() {
  kept_here = before_;
}

}  // namespace kerno
