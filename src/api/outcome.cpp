#include "api/outcome.h"

#include <algorithm>

#include "base/text.h"

namespace kerno {

std::string LineOf(const Message& message) {
  return message.what.empty() ? message.why : message.what + ": " + message.why;
}

Outcome Outcome::Bad(std::string_view what, std::string_view why) {
  return {KERNO_BAD_CALL, LineOf({false, std::string(what), std::string(why)})};
}

Outcome Outcome::Of(const Status& status) {
  if (status.ok()) return Ok();
  const int result = status.failure == Failure::kNotFound ? KERNO_NO_FACE : KERNO_FAILED;
  return {result, LineOf({false, Utf16ToUtf8(status.what), Utf16ToUtf8(status.why)})};
}

Outcome Outcome::Of(const std::vector<Message>& messages, int result) {
  const auto error = std::ranges::find(messages, false, &Message::is_warning);
  return {result, error == messages.end() ? "something is wrong" : LineOf(*error)};
}

}  // namespace kerno
