// Lines of shaped text set one below the other, or as columns from right to left.
#pragma once

#include <string_view>
#include <vector>

#include "outline/shaping_font.h"
#include "outline/stroke_font.h"

namespace kerno {

enum class Alignment { kLeft, kCentre, kRight };

struct BlockOptions {
  WritingMode mode = WritingMode::kHorizontal;
  Alignment align = Alignment::kLeft;  // of columns: top, middle, bottom
  double line_spacing = 1;             // of the font's own distance of lines
  double letter_spacing = 0;           // font units, after each character
};

// A glyph of the block; font units, y up, the first line's pen at the origin.
struct BlockGlyph {
  uint32_t glyph = 0;
  size_t character = 0;  // the UTF-16 unit of the text that it begins at
  uint32_t line = 0;
  P2 origin;
};

// Lines end at LF, CR LF or CR.
std::vector<BlockGlyph> SetBlock(const ShapingFont& font, std::u16string_view text,
                                 const BlockOptions& options);

// The same with a font of strokes: one glyph after the other, without kerning or shaping. In
// vertical mode upright characters stand in columns, each in the middle of its own.
std::vector<BlockGlyph> SetStrokeBlock(const StrokeFont& font, std::u16string_view text,
                                       const BlockOptions& options);

}  // namespace kerno
