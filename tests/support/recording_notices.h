// Notices that are kept instead of shown.
#pragma once

#include <string>
#include <vector>

#include "base/notices.h"

namespace kerno::test {

// The process's notices while it lives.
class RecordingNotices final : public Notices {
 public:
  RecordingNotices() : before_(ReplaceNotices(this)) {}
  ~RecordingNotices() override { ReplaceNotices(before_); }
  RecordingNotices(const RecordingNotices&) = delete;
  RecordingNotices& operator=(const RecordingNotices&) = delete;

  std::vector<std::u16string> messages;
  std::vector<std::u16string> waits;  // an empty text for each time that the display is cleared

  void Message(std::u16string_view text) override { messages.emplace_back(text); }
  void ShowWait(std::u16string_view text) override { waits.emplace_back(text); }
  void ClearWait() override { waits.emplace_back(); }
  Continue Progress(std::u16string_view, int64_t, int64_t) override { return Continue::kYes; }

 private:
  Notices* before_;
};

}  // namespace kerno::test
