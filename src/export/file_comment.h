// The comment by which a written file says where it comes from.
#pragma once

#include <string>
#include <string_view>

namespace kerno {

// Three lines, each ended by CR LF: the exporter and when it was built, the program, the time.
std::u16string FileComment(std::u16string_view exporter);

}  // namespace kerno
