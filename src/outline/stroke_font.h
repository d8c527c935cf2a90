// Fonts whose letters are lines that a tool follows, instead of outlines around them.
//
// Units are the font's own, y points up, the baseline is at 0.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "drawing/path.h"
#include "platform/status.h"

namespace kerno {

struct StrokeGlyph {
  double advance = 0;
  std::vector<Path> strokes = {};  // about the pen, in writing order
  // Of a glyph whose data cannot be read: the line of the file and what is wrong with it. A font
  // that has one is of use for all other characters.
  size_t bad_line = 0;
  std::u16string fault = {};
};

struct StrokeFont {
  std::u16string family;  // as the font calls itself; empty where it does not
  double units_per_em = 0;
  double cap_height = 0;           // 0: unknown
  double ascent = 0, descent = 0;  // of the tallest and the deepest letters; descent below 0
  double line_pitch = 0;           // from baseline to baseline
  std::vector<StrokeGlyph> glyphs = std::vector<StrokeGlyph>(1);  // 0: of characters that it lacks
  std::unordered_map<char32_t, uint32_t> numbers;                 // of the glyphs, by character

  // 0 for a character that the font does not have. A no-break or an ideographic space is a
  // space where the font has no other.
  uint32_t GlyphOf(char32_t character) const;
  // Adds a glyph; where the character has one already, `replace` says which one stays.
  enum class IfKnown { kKeep, kReplace };
  void Add(char32_t character, StrokeGlyph glyph, IfKnown known);
};

// Reads a font of any of the three formats, told apart by its first characters. `name` is that of
// the file, without its ending: Hershey files do not say which characters they hold.
//
// Fails for what is no stroke font and for one whose structure is broken, with "line N" as the
// status's subject where there is one. *font is set on success only.
[[nodiscard]] Status ReadStrokeFont(std::string_view bytes, std::u16string_view name,
                                    StrokeFont* font);

// Hershey's letters as James Hurt's text files (.jhf) have them: one glyph a line, its number in
// five characters, the number of its pairs in three, then pairs of letters around "R", y down.
[[nodiscard]] Status ReadHersheyFont(std::string_view bytes, std::u16string_view name,
                                     StrokeFont* font);
// LibreCAD's .lff: "[0041] A", then a line for each polyline, "x,y;x,y,Abulge", or "C0041" for the
// strokes of another character.
[[nodiscard]] Status ReadLffFont(std::string_view bytes, StrokeFont* font);
// The first <font> of an SVG file, open paths as they are.
[[nodiscard]] Status ReadSvgFont(std::string_view bytes, StrokeFont* font);

}  // namespace kerno
