// The comment by which a written file says where it comes from.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kerno {

// Three lines, each ended by CR LF: the exporter and when it was built, the program, the time. That
// is the clock's, in local time, or `moment`, seconds since 1970-01-01 00:00:00 UTC, in UTC.
std::u16string FileComment(std::u16string_view exporter, std::optional<int64_t> moment = {});

}  // namespace kerno
