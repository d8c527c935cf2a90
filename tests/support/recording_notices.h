// Notices that are kept instead of shown.
#pragma once

#include <string>
#include <vector>

#include "base/notices.h"
#include "support/installed.h"

namespace kerno::test {

// The process's notices while it lives.
class RecordingNotices : public Installed<Notices, ReplaceNotices> {
 public:
  std::vector<std::u16string> messages;
  std::vector<std::u16string> waits;  // an empty text for each time that the display is cleared

  struct Step {
    std::u16string text;
    int64_t done;
    int64_t total;
    bool operator==(const Step&) const = default;
  };
  std::vector<Step> steps;  // of progress
  int64_t stop_at = -1;     // the user stops the operation from this step on; -1: never

  void Message(std::u16string_view text) override { messages.emplace_back(text); }
  void ShowWait(std::u16string_view text) override { waits.emplace_back(text); }
  void ClearWait() override { waits.emplace_back(); }
  Continue Progress(std::u16string_view text, int64_t done, int64_t total) override {
    steps.push_back({std::u16string(text), done, total});
    return stop_at >= 0 && done >= stop_at ? Continue::kNo : Continue::kYes;
  }
};

}  // namespace kerno::test
