// A flag that is set for as long as something lasts.
#pragma once

namespace kerno {

// The flag is true while this lives, and then what it was: a view tells by it the events that its
// own writing into controls causes.
class Raised {
 public:
  explicit Raised(bool& flag) : flag_(flag), before_(flag) { flag_ = true; }
  ~Raised() { flag_ = before_; }
  Raised(const Raised&) = delete;
  Raised& operator=(const Raised&) = delete;

 private:
  bool& flag_;
  bool before_;
};

}  // namespace kerno
