// What each thread is told of its last failure, and the texts that it was handed: they stay with
// the thread, so that no call for a sign can take them away.
#pragma once

#include <cstddef>
#include <string>

#include "api/outcome.h"

namespace kerno {

// Keeps the message of a failure; answers the outcome's result.
int Keep(const Outcome& outcome);
// The same where there may be no memory for a message: it is of static texts.
int KeepNoMemory() noexcept;
int KeepFault(const char* what) noexcept;

const char* LastMessage() noexcept;

// A text that this thread was handed stands until it asks for another one of its kind.
enum class TextKind { kLayer, kWarning, kFaces, kStrokeFonts, kFormats, kOptions };
inline constexpr size_t kTextKinds = 6;
const char* KeepText(TextKind kind, std::string text);

}  // namespace kerno
