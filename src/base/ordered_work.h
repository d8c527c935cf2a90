// A stream of pieces of work on several processors, taken in and handed back in order.
#pragma once

#include <cstddef>
#include <functional>

namespace kerno {

// Works on pieces of a stream of any length with a fixed number of them at hand, each in a slot.
struct OrderedWork {
  // Puts the next piece into a slot; false at the end of the stream.
  std::function<bool(size_t slot)> take;
  // Works on the piece in a slot. Called from `workers` threads at a time, each with its own
  // number below that; may not throw.
  std::function<void(size_t slot, size_t worker)> work;
  // Gets the finished pieces in the order in which they were taken.
  std::function<void(size_t slot)> give;
};

// How many slots such work has.
size_t SlotsFor(size_t workers);

// Runs until the stream ends and everything is given; take and give are called from this thread
// alone, work too where there is one worker. Threads that the system refuses are done without.
void RunInOrder(const OrderedWork& job, size_t workers);

}  // namespace kerno
