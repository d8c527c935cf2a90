#include "base/ordered_work.h"

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

#include "base/parallel.h"

namespace kerno {
namespace {

constexpr size_t kSlotsForAWorker = 32;  // so that one slow piece holds up nobody

// Pieces are counted in the order in which they are taken; piece n stands in slot n % slots.
class Threads {
 public:
  Threads(const OrderedWork& job, size_t workers)
      : job_(job), workers_(workers), is_done_(SlotsFor(workers)) {
    threads_.reserve(workers);
  }

  ~Threads() {
    End();
    for (std::thread& thread : threads_) thread.join();
  }
  Threads(const Threads&) = delete;
  Threads& operator=(const Threads&) = delete;

  void Run() {
    Start();
    while (Take()) Give(taken_ - given_ < is_done_.size() ? Wait::kNo : Wait::kForTheNext);
    End();
    while (given_ < taken_) Give(Wait::kForTheNext);
  }

 private:
  enum class Wait { kNo, kForTheNext };

  void Start() {
    try {
      while (threads_.size() < workers_) {
        threads_.emplace_back([this, number = threads_.size()] { Work(number); });
      }
    } catch (const std::system_error&) {
      if (threads_.empty()) throw;
    }
  }

  bool Take() {
    if (!job_.take(taken_ % is_done_.size())) return false;
    const std::lock_guard lock(mutex_);
    ++taken_;
    taken_one_.notify_one();
    return true;
  }

  void End() {
    const std::lock_guard lock(mutex_);
    has_ended_ = true;
    taken_one_.notify_all();
  }

  // Gives what is finished and next in order.
  void Give(Wait wait) {
    std::unique_lock lock(mutex_);
    const auto is_ready = [&] { return given_ < taken_ && is_done_[given_ % is_done_.size()]; };
    if (wait == Wait::kForTheNext) done_one_.wait(lock, is_ready);
    while (is_ready()) {
      const size_t slot = given_ % is_done_.size();
      lock.unlock();
      job_.give(slot);
      lock.lock();
      is_done_[slot] = false;
      ++given_;
    }
  }

  void Work(size_t number) {
    const SerialHere serial;
    std::unique_lock lock(mutex_);
    for (;;) {
      taken_one_.wait(lock, [&] { return begun_ < taken_ || has_ended_; });
      if (begun_ == taken_) return;
      const uint64_t piece = begun_++;
      lock.unlock();
      job_.work(piece % is_done_.size(), number);
      lock.lock();
      is_done_[piece % is_done_.size()] = true;
      if (piece == given_) done_one_.notify_one();
    }
  }

  const OrderedWork& job_;
  const size_t workers_;
  std::vector<std::thread> threads_;
  std::mutex mutex_;
  std::condition_variable taken_one_, done_one_;
  std::vector<char> is_done_;  // of each slot
  uint64_t taken_ = 0, begun_ = 0, given_ = 0;
  bool has_ended_ = false;
};

}  // namespace

size_t SlotsFor(size_t workers) {
  return workers <= 1 ? 1 : workers * kSlotsForAWorker;
}

void RunInOrder(const OrderedWork& job, size_t workers) {
  if (workers > 1) return Threads(job, workers).Run();
  const SerialHere serial;
  while (job.take(0)) {
    job.work(0, 0);
    job.give(0);
  }
}

}  // namespace kerno
