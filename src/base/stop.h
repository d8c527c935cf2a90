// Work that is given up when nobody wants its result any more: a drawing of a text that has changed
// since, a file that the user cancels.
//
// Whoever starts such work says how it is asked. The work asks between its pieces, and ends by an
// exception where it is to stop, so that no stage hands a half-made result to the next one.
#pragma once

#include <cstddef>
#include <functional>
#include <string_view>

#include "platform/status.h"

namespace kerno {

// Whether the work is to stop. Called by any thread that works on it, often.
using StopQuestion = std::function<bool()>;

// Calls `work`, which asks that question wherever it, or a thread that helps it (base/parallel.h),
// calls StopIfAsked. The answer is that of the work, or "stopped by the user" for `what`.
Status RunStoppable(const StopQuestion& is_asked, std::u16string_view what,
                    const std::function<Status()>& work);

// Between two pieces of work. Comes back unless this thread's work is to stop; there is nothing to
// ask where it was not started by RunStoppable.
void StopIfAsked();

// The same for pieces that take less time than the question: every so many of them.
class StopNowAndThen {
 public:
  void Step() {
    if (++steps_ % kSteps == 0) StopIfAsked();
  }

 private:
  static constexpr size_t kSteps = 1024;
  size_t steps_ = 0;
};

// What this thread asks, null for nothing; for threads that help another one.
const StopQuestion* StopQuestionHere();

// While it lives, this thread asks that, or nothing.
class StopQuestionOf {
 public:
  explicit StopQuestionOf(const StopQuestion* question);
  ~StopQuestionOf();
  StopQuestionOf(const StopQuestionOf&) = delete;
  StopQuestionOf& operator=(const StopQuestionOf&) = delete;

 private:
  const StopQuestion* before_;
};

}  // namespace kerno
