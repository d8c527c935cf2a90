#include "base/stop.h"

#include <string>
#include <utility>

namespace kerno {
namespace {

struct Stopped {};  // what StopIfAsked throws

thread_local const StopQuestion* of_this_thread = nullptr;

}  // namespace

const StopQuestion* StopQuestionHere() {
  return of_this_thread;
}

StopQuestionOf::StopQuestionOf(const StopQuestion* question)
    : before_(std::exchange(of_this_thread, question)) {}

StopQuestionOf::~StopQuestionOf() {
  of_this_thread = before_;
}

void StopIfAsked() {
  if (of_this_thread && (*of_this_thread)()) throw Stopped();
}

Status RunStoppable(const StopQuestion& is_asked, std::u16string_view what,
                    const std::function<Status()>& work) {
  const StopQuestionOf here(&is_asked);
  try {
    return work();
  } catch (const Stopped&) {
    return Status::Error(Failure::kOther, std::u16string(what), u"stopped by the user");
  }
}

}  // namespace kerno
