// The order of a line that mixes directions: the Unicode bidirectional algorithm (UAX #9).
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace kerno {

enum class ParagraphDirection {
  kAuto,  // that of the first letter with a direction; left to right where there is none
  kLeftToRight,
  kRightToLeft,
};

// What a bracket is: 0 for other characters; a pair has one `pair` in common.
struct Bracket {
  uint32_t pair = 0;
  bool opens = false;
};

struct BidiLine {
  std::vector<uint8_t> levels;  // of each character; odd ones run from right to left
  std::vector<Bracket> brackets;
};

// The embedding levels of a paragraph that is one line. Characters that only control the order have
// the level of what is beside them.
BidiLine LevelsOf(std::u32string_view line, ParagraphDirection direction);

}  // namespace kerno
