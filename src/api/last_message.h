// What each thread is told of its last failure, and the texts that it was handed: they stay with
// the thread, so that no call for a sign can take them away.
#pragma once

#include <string>

#include "api/outcome.h"

namespace kerno {

// Keeps the message of a failure; answers the outcome's result.
int Keep(const Outcome& outcome);
// The same where there may be no memory for a message: it is of static texts.
int KeepNoMemory() noexcept;
int KeepFault(const char* what) noexcept;

const char* LastMessage() noexcept;

}  // namespace kerno
