// The time that files tell as that of their writing, where it is not the clock's.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/status.h"

namespace kerno {

// What the environment's SOURCE_DATE_EPOCH says: seconds since 1970-01-01 00:00:00 UTC, before the
// year 10000, so that the same run gives the same bytes on another day; nothing when it is not set.
// Anything but such a number is an error and leaves nothing.
[[nodiscard]] Status ReadSourceDate(std::optional<int64_t>* seconds);

}  // namespace kerno
