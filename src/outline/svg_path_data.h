// The "d" attribute of SVG (SVG 1.1, 8.3): all of its commands.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "drawing/path.h"

namespace kerno {

// Appends the paths in the data's own coordinates; those that "Z" ends are closed, with a line to
// their start where they do not end there. Arcs of circles stay arcs, those of ellipses become
// cubic curves (within a millionth of their size). A path without segments leaves no trace.
// False, with the reason, where the data is no path; what was read before stands.
[[nodiscard]] bool ReadSvgPathData(std::string_view data, std::vector<Path>* paths,
                                   std::u16string* fault);

}  // namespace kerno
