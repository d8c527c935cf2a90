// A flag that is set for as long as something lasts.
#pragma once

namespace kerno {

// The flag is true while this lives, and then what it was: a view tells by it the events that its
// own writing into controls causes.
class ScopedFlag {
 public:
  explicit ScopedFlag(bool& flag) : flag_(flag), before_(flag) { flag_ = true; }
  ~ScopedFlag() { flag_ = before_; }
  ScopedFlag(const ScopedFlag&) = delete;
  ScopedFlag& operator=(const ScopedFlag&) = delete;

 private:
  bool& flag_;
  bool before_;
};

}  // namespace kerno
