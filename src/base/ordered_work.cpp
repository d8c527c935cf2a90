#include "base/ordered_work.h"

#include <chrono>
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
// Of the slots, what the workers still have before them when more is handed to them.
constexpr size_t kShareInReserve = 4;
// So long what is finished may wait for more of its kind.
constexpr std::chrono::milliseconds kPatience(50);

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

  bool IsNextDone() const { return given_ < taken_ && is_done_[given_ % is_done_.size()]; }
  bool RunsLow() const { return taken_ - begun_ <= is_done_.size() / kShareInReserve; }

  // Gives what is finished and next in order. Waking up for each piece would take a processor away
  // from the workers that often: it comes together until they run out of work.
  void Give(Wait wait) {
    std::unique_lock lock(mutex_);
    if (wait == Wait::kForTheNext) {
      done_one_.wait_for(lock, kPatience, [&] { return IsNextDone() && RunsLow(); });
      done_one_.wait(lock, [&] { return IsNextDone(); });
    }
    uint64_t ready = given_;
    while (ready < taken_ && is_done_[ready % is_done_.size()]) ++ready;
    lock.unlock();
    for (uint64_t piece = given_; piece < ready; ++piece) job_.give(piece % is_done_.size());
    lock.lock();
    for (; given_ < ready; ++given_) is_done_[given_ % is_done_.size()] = false;
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
      if (piece == given_ || RunsLow()) done_one_.notify_one();
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
