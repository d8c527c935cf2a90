#include "api/last_message.h"

#include <array>
#include <memory>
#include <new>
#include <utility>

#include "base/text.h"
#include "platform/thread_slot.h"

namespace kerno {
namespace {

struct ThreadTexts {
  std::string message;
  std::array<std::string, kTextKinds> kept;
};

ThreadSlot& Slot() {
  static ThreadSlot slot([](void* texts) { delete static_cast<ThreadTexts*>(texts); });
  return slot;
}

// Of this thread; made when it is first asked for.
ThreadTexts& Texts() {
  if (auto* const known = static_cast<ThreadTexts*>(Slot().Get())) return *known;
  auto made = std::make_unique<ThreadTexts>();
  if (!Slot().Set(made.get())) throw std::bad_alloc();
  return *made.release();
}

thread_local const char* shown = "";  // this thread's message, or a text of the program

}  // namespace

int Keep(const Outcome& outcome) {
  if (outcome.ok()) return KERNO_OK;
  // Values and names of files are told as they were given, in whatever bytes.
  std::string text = Utf16ToUtf8(Utf8ToUtf16Lossy(outcome.message));
  std::string& kept = Texts().message;
  kept = std::move(text);
  shown = kept.c_str();
  return outcome.result;
}

int KeepNoMemory() noexcept {
  shown = "memory: there is not enough for this text";
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
  return shown;
}

const char* KeepText(TextKind kind, std::string text) {
  std::string& kept = Texts().kept[static_cast<size_t>(kind)];
  kept = std::move(text);
  return kept.c_str();
}

}  // namespace kerno
