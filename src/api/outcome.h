// What a call of the library comes to: one of the numbers of kerno.h and, for a failure, the
// message.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "api/kerno.h"
#include "app/reports.h"
#include "platform/status.h"

namespace kerno {

struct [[nodiscard]] Outcome {
  int result = KERNO_OK;
  std::string message;  // "what: why"; empty exactly when result is KERNO_OK

  bool ok() const { return result == KERNO_OK; }

  static Outcome Ok() { return {}; }
  static Outcome Bad(std::string_view what, std::string_view why);
  static Outcome Of(const Status& status);
  // The first error that was reported.
  static Outcome Of(const std::vector<Message>& messages, int result);
};

// "what: why"
std::string LineOf(const Message& message);

}  // namespace kerno
