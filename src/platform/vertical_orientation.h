// How a character stands in a column of text.
#pragma once

#include <cstdint>

namespace kerno {

// The Unicode property Vertical_Orientation (UAX #50).
enum class VerticalOrientation : uint8_t {
  kRotated,             // R: lies on its side
  kUpright,             // U: stands as in horizontal text
  kTransformedUpright,  // Tu: has a form of its own, else stands
  kTransformedRotated,  // Tr: has a form of its own, else lies on its side
};

VerticalOrientation VerticalOrientationOf(char32_t ch);

}  // namespace kerno
