// When this program was built, for the comments of the files that it writes.
#pragma once

#include <string_view>

namespace kerno {

std::string_view BuildTime();  // "Jul 26 2018 12:20:50"

}  // namespace kerno
