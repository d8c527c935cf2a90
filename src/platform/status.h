// The outcome of an operation of the outside world: done, or what could not be done and why.
#pragma once

#include <string>
#include <utility>

namespace kerno {

// Kinds of failure that callers treat differently; everything else is kOther.
enum class Failure {
  kNone,
  kNotFound,          // the file or folder does not exist
  kAccessDenied,      // permissions, or a read-only place
  kSharingViolation,  // another process holds the file
  kIsFolder,          // a folder stands where a file was wanted
  kNoSpace,           // the disk or the quota is full
  kOther,
};

// `what` names the thing (a path, a face, a setting), `why` the reason in words for the user; both
// are empty exactly when failure is kNone.
struct [[nodiscard]] Status {
  Failure failure = Failure::kNone;
  std::u16string what;
  std::u16string why;

  bool ok() const { return failure == Failure::kNone; }

  static Status Ok() { return {}; }
  static Status Error(Failure failure, std::u16string what, std::u16string why) {
    return {failure, std::move(what), std::move(why)};
  }
};

}  // namespace kerno
