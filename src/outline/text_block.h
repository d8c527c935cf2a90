// Lines of shaped text set one below the other, or as columns from right to left.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "drawing/affine.h"
#include "outline/shaping_font.h"
#include "outline/stroke_font.h"
#include "outline/text_runs.h"

namespace kerno {

enum class Alignment { kLeft, kCentre, kRight };

struct BlockOptions {
  WritingMode mode = WritingMode::kHorizontal;
  Alignment align = Alignment::kLeft;  // of columns: top, middle, bottom
  double line_spacing = 1;             // of the font's own distance of lines
  double letter_spacing = 0;           // font units, after each character
  std::string language;                // a BCP 47 tag; empty: the font's own way
  ParagraphDirection direction = ParagraphDirection::kAuto;  // of each line
  size_t across_digits = 0;  // in columns, numbers of so many digits at most stand across
};

// How glyphs of a font are drawn in a block: made as large as the first font's, lying in a column,
// or squeezed.
struct GlyphForm {
  size_t font = 0;
  Linear map;  // from the font's units to the block's

  bool operator==(const GlyphForm&) const = default;
};

// A glyph of the block.
struct BlockGlyph {
  uint32_t glyph = 0;
  uint32_t form = 0;     // of the block's forms
  size_t character = 0;  // the UTF-16 unit of the text that it begins at
  uint32_t line = 0;
  P2 origin;
};

// Units are those of the first font, y up, the first line's pen at the origin.
struct TextBlock {
  std::vector<BlockGlyph> glyphs;
  std::vector<GlyphForm> forms;     // the first one: glyphs of the first font as they are
  std::vector<char32_t> missing;    // distinct characters that no font has a glyph for
  std::vector<size_t> substituted;  // characters taken from each font; 0 for the first
};

// Lines end at LF, CR LF, CR, U+0085, U+2028 or U+2029; blanks at their ends are left out. A tab is
// a blank. A character that the first font has no glyph for comes from the
// next one that has it, together with its marks.
TextBlock SetBlock(std::span<const ShapingFont* const> fonts, std::u16string_view text,
                   const BlockOptions& options);

// The same with a font of strokes: one glyph after the other, without kerning or shaping, letters
// and marks composed. In vertical mode upright characters stand in columns, each in the middle of
// its own.
TextBlock SetStrokeBlock(const StrokeFont& font, std::u16string_view text,
                         const BlockOptions& options);

}  // namespace kerno
