#include "base/file_wait.h"

#include <memory>

#include "base/notices.h"
#include "base/stop.h"
#include "base/text.h"
#include "platform/clock.h"
#include "platform/folder_path.h"
#include "platform/held_file.h"

namespace kerno {
namespace {

constexpr int kTries = 100;
constexpr uint32_t kPause = 100;        // milliseconds
constexpr uint32_t kRecovery = 60'000;  // milliseconds

bool MayPass(const Status& status, WaitOut what) {
  if (status.failure == Failure::kSharingViolation) return true;
  return what == WaitOut::kAnyFailure && !status.ok() && status.failure != Failure::kNoSpace;
}

// A replacement that asks before each piece whether the file is wanted still.
class WantedReplacement final : public FileReplacement {
 public:
  explicit WantedReplacement(FileReplacement* file) : file_(*file) {}

  Status Write(std::string_view bytes) override {
    StopIfAsked();
    return file_.Write(bytes);
  }
  bool CanRewrite() const override { return file_.CanRewrite(); }
  Status Rewrite(uint64_t at, std::string_view bytes) override { return file_.Rewrite(at, bytes); }
  Status Commit() override {
    StopIfAsked();
    return file_.Commit();
  }

 private:
  FileReplacement& file_;
};

}  // namespace

bool Patience::Pause() {
  Clock& clock = CurrentClock();
  if (clock.Ticks() - last_ > kRecovery) left_ = kTries;
  if (left_ == 0) return false;
  clock.Sleep(kPause);
  last_ = clock.Ticks();
  return --left_ > 0;
}

Status WaitForFile(const std::filesystem::path& path, FileWait wait,
                   const std::function<Status()>& attempt, WaitOut what, Patience* patience) {
  Patience own;
  if (!patience) patience = &own;
  struct Shown {  // taken away also where the work is stopped
    ~Shown() {
      if (is) CurrentNotices().ClearWait();
    }
    bool is = false;
  } shown;
  Status status;
  int attempts = 0;
  do {
    status = attempt();
    ++attempts;
    if (!MayPass(status, what)) break;
    if (wait == FileWait::kNothing) continue;
    if (!shown.is) {
      CurrentNotices().ShowWait(
          (wait == FileWait::kRead ? u"FileWait OpenRead  " : u"FileWait OpenWrite ") +
          PathText(path));
      shown.is = true;
    }
    if (what == WaitOut::kAskedHolder &&
        CurrentNotices().KeepWaiting(PathText(path), attempts) == Continue::kNo) {
      break;
    }
  } while (patience->Pause());
  return status;
}

Status ReplaceWhenFree(const std::filesystem::path& target, const FileFiller& fill) {
  std::unique_ptr<FileReplacement> file;
  Status status = WaitForFile(
      target, FileWait::kWrite,
      [&] {
        StopIfAsked();
        Status opened;
        if (FactsOfPath(target).kind == PathKind::kFile) {
          HeldFile::Open(target, Deny::kAll, &opened);
          if (opened.failure == Failure::kSharingViolation) return opened;
        }
        file = FileReplacement::Create(target, &opened);
        return file ? Status::Ok() : opened;
      },
      WaitOut::kAskedHolder);
  if (!file) return status;
  WantedReplacement wanted(file.get());
  status = fill(&wanted);
  return status.ok() ? wanted.Commit() : status;
}

Status ReplaceWhenFree(const std::filesystem::path& target, std::string_view bytes) {
  return ReplaceWhenFree(target, [&](FileReplacement* file) { return file->Write(bytes); });
}

}  // namespace kerno
