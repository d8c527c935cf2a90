// How the core tells the user something without knowing the user interface: the command line writes
// to standard error, the dialog to its status line and to messages. Never silence.
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

namespace kerno {

enum class Continue { kYes, kNo };

inline constexpr int kOkButton = 1;

class Notices {
 public:
  virtual ~Notices() = default;

  // A message that the user should read (a failure, a warning).
  virtual void Message(std::u16string_view text) = 0;

  // One that changes what is made (settings that cannot be read): shown to those, too, who want no
  // warnings.
  virtual void Trouble(std::u16string_view text) { Message(text); }

  // The same, for a record of the answer: `answered` gets the number of the button that the user
  // pressed (ButtonLabel in base/launch.h), after that was done. Where messages are no boxes, at
  // once.
  virtual void Ask(std::u16string_view text, const std::function<void(int button)>& answered) {
    Message(text);
    answered(kOkButton);
  }

  // The wait display: shown while a file that another process holds is waited for; ClearWait
  // removes it.
  virtual void ShowWait(std::u16string_view text) = 0;
  virtual void ClearWait() = 0;

  // Whether a wait for a file that another program holds goes on after so many attempts.
  virtual Continue KeepWaiting(std::u16string_view /*path*/, int /*attempts*/) {
    return Continue::kYes;
  }

  // Progress of a long operation: `done` of `total` steps. kNo asks the operation to stop.
  virtual Continue Progress(std::u16string_view text, int64_t done, int64_t total) = 0;
};

// The process's notices; one that drops everything until a user interface sets its own.
// ReplaceNotices returns the one before; null restores the silent one. The caller keeps ownership.
Notices& CurrentNotices();
Notices* ReplaceNotices(Notices* notices);

// While it lives, this thread has notices of its own, whatever the process's are.
class NoticesHere {
 public:
  explicit NoticesHere(Notices* notices);
  ~NoticesHere();
  NoticesHere(const NoticesHere&) = delete;
  NoticesHere& operator=(const NoticesHere&) = delete;

 private:
  Notices* before_;
};

// While it lives, this thread's notices are the silent ones.
class SilentHere {
 public:
  SilentHere();

 private:
  NoticesHere here_;
};

}  // namespace kerno
