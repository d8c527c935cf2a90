// Text from the font itself: shaped by its own rules, with the font's own curves, unhinted.
//
// Units are the font's (UnitsPerEm to an em), y points up. Size plays no part in the shapes.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "drawing/path.h"
#include "platform/font_data.h"
#include "platform/status.h"

namespace kerno {

enum class WritingMode {
  kHorizontal,
  kVertical,  // each line is a column, top to bottom, in the font's vertical forms
};

// One glyph of a shaped line.
struct ShapedGlyph {
  uint32_t glyph = 0;    // 0: the font has none for the character
  uint32_t cluster = 0;  // the UTF-16 unit of the line that its first character begins at
  P2 origin;             // where its own origin goes, from the line's start
  P2 advance;            // what it moved the pen by
};

struct ShapedLine {
  std::vector<ShapedGlyph> glyphs;  // as they stand, left to right or top to bottom
  double length = 0;                // the pen's whole way
};

class ShapingFont {
 public:
  // Fails for bytes that hold no font with outlines, for features or variations that cannot be
  // read, and with kNotFound for an axis or a place on it that the font does not have. *font is set
  // on success only.
  [[nodiscard]] static Status Open(const FontData& data, std::unique_ptr<ShapingFont>* font);
  ~ShapingFont();
  ShapingFont(const ShapingFont&) = delete;
  ShapingFont& operator=(const ShapingFont&) = delete;

  const FontData& data() const { return data_; }
  double units_per_em() const { return units_per_em_; }
  // From the font, or the ink of "H" where it says none; 0 where it has neither.
  double cap_height() const { return cap_height_; }
  // Whether the font itself has a glyph for the character.
  bool HasGlyph(char32_t character) const;
  // Those of the wanted features that the font has no rule for.
  std::vector<std::string> FeaturesWithoutRules() const;
  // The distance of two lines, or of two columns.
  double line_pitch(WritingMode mode) const;

  // Kerning, ligatures, marks and whatever else the font turns on by itself. `text` is one line.
  // Spacing is added after each cluster; with spacing optional ligatures are off.
  ShapedLine Shape(std::u16string_view text, WritingMode mode, double spacing) const;

  // The closed outlines of a glyph, about its own origin, bold and slanted where the font's data
  // asks for that. Kept: the reference lives as long as the font.
  const std::vector<Path>& Outline(uint32_t glyph) const;

 private:
  struct Handles;
  ShapingFont(FontData data, std::unique_ptr<Handles> handles);
  void MeasureCapitals();

  FontData data_;
  std::unique_ptr<Handles> handles_;
  double units_per_em_ = 0;
  double cap_height_ = 0;
  double bold_ = 0;  // how far outlines are moved outwards
};

// Whether "smcp,liga=0" and "wght=650,slnt=-8" can be read; the reason names the part that cannot.
[[nodiscard]] Status CheckFeatures(std::string_view features);
[[nodiscard]] Status CheckVariations(std::string_view variations);

}  // namespace kerno
