#include "api/last_message.h"

#include <array>
#include <new>
#include <utility>

#include "base/text.h"

namespace kerno {
namespace {

struct LastFailure {
  std::string text;
  const char* shown = "";  // `text`, or one of the program
};

thread_local LastFailure last;
thread_local std::array<std::string, kTextKinds> kept_texts;

}  // namespace

int Keep(const Outcome& outcome) {
  if (outcome.ok()) return KERNO_OK;
  // Values and names of files are told as they were given, in whatever bytes.
  last.text = Utf16ToUtf8(Utf8ToUtf16Lossy(outcome.message));
  last.shown = last.text.c_str();
  return outcome.result;
}

int KeepNoMemory() noexcept {
  last.shown = "memory: there is not enough for this text";
  return KERNO_NO_MEMORY;
}

int KeepFault(const char* what) noexcept {
  try {
    return Keep({KERNO_FAILED, std::string("kerno: ") + what});
  } catch (const std::bad_alloc&) {
    return KeepNoMemory();
  }
}

const char* LastMessage() noexcept {
  return last.shown;
}

const char* KeepText(TextKind kind, std::string text) {
  std::string& kept = kept_texts[static_cast<size_t>(kind)];
  kept = std::move(text);
  return kept.c_str();
}

}  // namespace kerno
