#include "base/parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <thread>
#include <utility>
#include <vector>

#include "base/stop.h"

namespace kerno {
namespace {

// Fewer calls are not worth a thread.
constexpr size_t kCallsForAThread = 8;

thread_local bool is_serial = false;

}  // namespace

SerialHere::SerialHere() : before_(std::exchange(is_serial, true)) {}

SerialHere::~SerialHere() {
  is_serial = before_;
}

void ForEachInParallel(size_t count, const std::function<void(size_t)>& work) {
  std::atomic<size_t> next = 0;
  std::atomic<bool> failed = false;
  std::exception_ptr failure;
  const StopQuestion* const question = StopQuestionHere();
  const auto run = [&] {
    const StopQuestionOf here(question);
    try {
      for (size_t i = next++; i < count; i = next++) {
        StopIfAsked();
        work(i);
      }
    } catch (...) {
      next = count;
      if (!failed.exchange(true)) failure = std::current_exception();
    }
  };
  std::vector<std::thread> helpers;
  const size_t most =
      is_serial ? 0
                : std::min<size_t>(std::thread::hardware_concurrency(), count / kCallsForAThread);
  helpers.reserve(most);
  try {
    while (helpers.size() + 1 < most) helpers.emplace_back(run);
  } catch (...) {
    // No more threads, or no memory for one: with those that there are.
  }
  run();
  for (std::thread& helper : helpers) helper.join();
  if (failure) std::rethrow_exception(failure);
}

}  // namespace kerno
