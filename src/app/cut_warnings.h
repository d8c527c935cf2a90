// What the user should know of a drawing before it is written: letters that are missing or made up,
// paths that cross.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "app/cut.h"

namespace kerno {

// "1 path", "2 paths"
std::string CountedText(size_t count, const char* one, const char* many);

// "DejaVu Sans Book"
std::string FaceName(const CutFace& face);

// Tells that a face's licence may forbid to take its outlines (ForbidsOutlines).
void WarnOfLicence(const std::string& face);

// Tells of characters that are not in a drawing as they should be; false when that ends the
// command, as it does when `strict`.
bool ReportLost(std::string_view what, const std::vector<char32_t>& characters, bool strict);

// Tells of all that; false when that ends it, as `strict` asks for where letters are missing or
// made up.
[[nodiscard]] bool ReportOnCut(const CutDrawing& made, bool strict);

}  // namespace kerno
