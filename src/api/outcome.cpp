#include "api/outcome.h"

#include <algorithm>

#include "base/text.h"
#include "platform/no_memory.h"

namespace kerno {

std::string LineOf(const Message& message) {
  return message.what.empty() ? message.why : message.what + ": " + message.why;
}

Outcome Outcome::Bad(std::string_view what, std::string_view why) {
  return {KERNO_BAD_CALL, LineOf({false, std::string(what), std::string(why)})};
}

Outcome Outcome::Of(const Status& status) {
  if (status.ok()) return Ok();
  int result = status.failure == Failure::kNotFound ? KERNO_NO_FACE : KERNO_FAILED;
  if (LacksMemory(status)) result = KERNO_NO_MEMORY;
  return {result, LineOf({false, Utf16ToUtf8(status.what), Utf16ToUtf8(status.why)})};
}

Outcome Outcome::Of(const std::vector<Message>& messages, int result) {
  const auto error = std::ranges::find(messages, false, &Message::is_warning);
  if (error == messages.end()) return {result, "something is wrong"};
  const bool lacks_memory = Utf8ToUtf16Lossy(error->why).starts_with(kNoMemoryReason);
  return {lacks_memory ? KERNO_NO_MEMORY : result, LineOf(*error)};
}

}  // namespace kerno
