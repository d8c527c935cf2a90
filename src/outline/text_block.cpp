#include "outline/text_block.h"

#include <algorithm>
#include <utility>

#include "base/text.h"

namespace kerno {
namespace {

struct LineOfText {
  std::u16string_view text;
  size_t start;
};

std::vector<LineOfText> LinesIn(std::u16string_view text) {
  std::vector<LineOfText> lines;
  size_t start = 0;
  for (size_t i = 0; i <= text.size(); ++i) {
    if (i < text.size() && text[i] != u'\n' && text[i] != u'\r') continue;
    lines.push_back({text.substr(start, i - start), start});
    if (i + 1 < text.size() && text[i] == u'\r' && text[i + 1] == u'\n') ++i;
    start = i + 1;
  }
  return lines;
}

// Where a line begins along its own direction, so that lines of different lengths are aligned.
double StartOf(double length, Alignment align) {
  return align == Alignment::kLeft ? 0 : align == Alignment::kCentre ? -length / 2 : -length;
}

}  // namespace

std::vector<BlockGlyph> SetBlock(const ShapingFont& font, std::u16string_view text,
                                 const BlockOptions& options) {
  std::vector<BlockGlyph> block;
  block.reserve(text.size());
  const bool vertical = options.mode == WritingMode::kVertical;
  const double pitch = font.line_pitch(options.mode) * options.line_spacing;
  uint32_t number = 0;
  for (const LineOfText& line : LinesIn(text)) {
    const ShapedLine shaped = font.Shape(line.text, options.mode, options.letter_spacing);
    const double start = StartOf(shaped.length, options.align);
    const P2 origin = vertical ? P2{-pitch * number, -start} : P2{start, -pitch * number};
    for (const ShapedGlyph& glyph : shaped.glyphs) {
      block.push_back({glyph.glyph,
                       line.start + glyph.cluster,
                       number,
                       {origin.x + glyph.origin.x, origin.y + glyph.origin.y}});
    }
    ++number;
  }
  return block;
}

std::vector<BlockGlyph> SetStrokeBlock(const StrokeFont& font, std::u16string_view text,
                                       const BlockOptions& options) {
  std::vector<BlockGlyph> block;
  const bool vertical = options.mode == WritingMode::kVertical;
  const double pitch = font.line_pitch * options.line_spacing;
  uint32_t number = 0;
  for (const LineOfText& line : LinesIn(text)) {
    const size_t first = block.size();
    double pen = 0;
    for (size_t at = 0; at < line.text.size();) {
      const size_t character = line.start + at;
      const uint32_t glyph = font.GlyphOf(NextCharacter(line.text, &at));
      const double advance = font.glyphs[glyph].advance;
      const P2 origin = vertical ? P2{-advance / 2, -pen - font.ascent} : P2{pen, 0};
      block.push_back({glyph, character, number, origin});
      pen += (vertical ? font.ascent - font.descent : advance) + options.letter_spacing;
    }
    const double start = StartOf(pen, options.align);
    const P2 by = vertical ? P2{-pitch * number, -start} : P2{start, -pitch * number};
    for (size_t i = first; i < block.size(); ++i) {
      block[i].origin = {block[i].origin.x + by.x, block[i].origin.y + by.y};
    }
    ++number;
  }
  return block;
}

}  // namespace kerno
