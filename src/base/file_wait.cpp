#include "base/file_wait.h"

#include "base/notices.h"
#include "base/text.h"
#include "platform/clock.h"

namespace kerno {
namespace {

constexpr int kTries = 100;
constexpr uint32_t kPause = 100;  // milliseconds

}  // namespace

Status WaitForFile(const std::filesystem::path& path, FileWait wait,
                   const std::function<Status()>& attempt) {
  bool shown = false;
  Status status;
  for (int i = 0; i < kTries; ++i) {
    status = attempt();
    if (status.failure != Failure::kSharingViolation) break;
    if (!shown && wait != FileWait::kNothing) {
      CurrentNotices().ShowWait(
          (wait == FileWait::kRead ? u"FileWait OpenRead  " : u"FileWait OpenWrite ") +
          PathText(path));
      shown = true;
    }
    CurrentClock().Sleep(kPause);
  }
  if (shown) CurrentNotices().ClearWait();
  return status;
}

}  // namespace kerno
