// A part and the container as text of the parts file, and back.
#pragma once

#include <string_view>

#include "parts/ipx_lexer.h"
#include "parts/parts.h"

namespace kerno {

// Version text of the format, as the first line of a file names it.
inline constexpr std::u16string_view kIpxVersion = u"1.20 2018/07/26";

}  // namespace kerno

namespace kerno::ipx {

// Header line, body header line, thirteen blocks.
void Write(Writer* out, const PartsElement& part);
void Read(Lines* lines, PartsElement* part);

// The whole file: `program` is the path of the program that writes it. Both show the progress;
// false when the user stopped it, or the writer's drain did. A container whose reading was stopped
// is empty.
[[nodiscard]] bool Write(Writer* out, const PartsA& container, std::u16string_view program);
[[nodiscard]] bool Read(Lines* lines, PartsA* container);

}  // namespace kerno::ipx
