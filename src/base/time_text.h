// Local times as text, the same in every locale.
#pragma once

#include <string>
#include <string_view>

#include "platform/clock.h"

namespace kerno {

inline constexpr std::u16string_view kTimeStamp = u"%Y/%m/%d %H:%M:%S";

// `pattern` with %Y (four digits), %m, %d, %H, %M and %S (two digits each) filled in; every other
// character as it is.
std::u16string FormatTime(const LocalTime& time, std::u16string_view pattern);

}  // namespace kerno
