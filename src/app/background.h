// Work beside the window: one piece after the other, on a thread of its own.
#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

#include "base/notices.h"

namespace kerno {

// What the piece under way wants the window to show.
struct WorkShown {
  std::u16string progress;
  double part = 0;          // of the progress, from 0 to 1
  std::u16string wait;      // not empty: something is waited for
  std::u16string question;  // not empty: the piece stands still until Answer is called
};

// The thread lives from the first piece on. A piece may not throw.
class Background {
 public:
  // `wake` is called by the worker when Finish or Look have something new.
  explicit Background(std::function<void()> wake) : wake_(std::move(wake)) {}
  ~Background() { Stop(); }
  Background(const Background&) = delete;
  Background& operator=(const Background&) = delete;

  // For the window's thread.

  // Runs `work` on the worker after all pieces before it, then `done` in Finish. Where the system
  // gives no thread, `work` runs at once.
  void Run(std::function<void()> work, std::function<void()> done);
  // Runs what is to be done after the pieces that have ended.
  void Finish();
  // Whether a piece runs, waits, or has ended and Finish was not called since.
  bool IsBusy() const;
  WorkShown Look() const;
  // Asks the piece under way, or else the next one, to stop.
  void Cancel();
  void Answer(bool yes);
  // Asks the piece under way to stop, waits for it, and drops those after it; for good.
  void Stop();

  // For the worker.

  // Whether the piece under way is to stop; any thread may ask.
  bool IsCancelled() const { return cancelled_; }
  // The one whose piece runs on this thread; null elsewhere.
  static Background* OfThisThread();
  bool IsWorker() const { return OfThisThread() == this; }
  Continue Progress(std::u16string_view text, double part);
  void ShowWait(std::u16string_view text);
  // Waits until the user has answered; false where the work is to stop.
  bool Ask(std::u16string_view question);

 private:
  struct Piece {
    std::function<void()> work, done;
  };
  void WorkOn();

  std::function<void()> wake_;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Piece> waiting_;
  std::deque<std::function<void()>> ended_;
  bool runs_ = false;  // a piece is under way
  std::atomic<bool> cancelled_ = false;
  bool stops_ = false;
  WorkShown shown_;
  bool answer_ = false;
  std::thread worker_;
};

}  // namespace kerno
