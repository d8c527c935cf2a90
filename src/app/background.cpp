#include "app/background.h"

#include <system_error>
#include <utility>

namespace kerno {
namespace {

thread_local Background* of_this_thread = nullptr;

}  // namespace

Background* Background::OfThisThread() {
  return of_this_thread;
}

void Background::Stop() {
  {
    const std::lock_guard lock(mutex_);
    stops_ = true;
    cancelled_ = true;
    waiting_.clear();
  }
  changed_.notify_all();
  if (worker_.joinable()) worker_.join();
}

void Background::Run(std::function<void()> work, std::function<void()> done) {
  if (!worker_.joinable()) {
    try {
      worker_ = std::thread([this] { WorkOn(); });
    } catch (const std::system_error&) {
      work();
      return done();
    }
  }
  {
    const std::lock_guard lock(mutex_);
    waiting_.push_back({std::move(work), std::move(done)});
  }
  changed_.notify_all();
}

void Background::WorkOn() {
  of_this_thread = this;
  for (;;) {
    Piece piece;
    {
      std::unique_lock lock(mutex_);
      changed_.wait(lock, [this] { return stops_ || !waiting_.empty(); });
      if (stops_) return;
      piece = std::move(waiting_.front());
      waiting_.pop_front();
      runs_ = true;
      shown_ = {};
    }
    piece.work();
    {
      const std::lock_guard lock(mutex_);
      runs_ = false;
      cancelled_ = stops_;
      shown_ = {};
      ended_.push_back(std::move(piece.done));
    }
    wake_();
  }
}

void Background::Finish() {
  for (;;) {
    std::function<void()> done;
    {
      const std::lock_guard lock(mutex_);
      if (ended_.empty()) return;
      done = std::move(ended_.front());
      ended_.pop_front();
    }
    done();
  }
}

bool Background::IsBusy() const {
  const std::lock_guard lock(mutex_);
  return runs_ || !waiting_.empty() || !ended_.empty();
}

WorkShown Background::Look() const {
  const std::lock_guard lock(mutex_);
  return shown_;
}

void Background::Cancel() {
  const std::lock_guard lock(mutex_);
  if (runs_ || !waiting_.empty()) cancelled_ = true;  // not one that comes after what has ended
}

void Background::Answer(bool yes) {
  {
    const std::lock_guard lock(mutex_);
    answer_ = yes;
    shown_.question.clear();
  }
  changed_.notify_all();
}

Continue Background::Progress(std::u16string_view text, double part) {
  const std::lock_guard lock(mutex_);
  shown_.progress = text;
  shown_.part = part;
  return cancelled_ ? Continue::kNo : Continue::kYes;
}

void Background::ShowWait(std::u16string_view text) {
  {
    const std::lock_guard lock(mutex_);
    shown_.wait = text;
  }
  wake_();
}

bool Background::Ask(std::u16string_view question) {
  {
    const std::lock_guard lock(mutex_);
    if (stops_) return false;
    shown_.question = question;
  }
  wake_();
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return stops_ || shown_.question.empty(); });
  return !stops_ && answer_;
}

}  // namespace kerno
