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
#include "outline/scripts.h"
#include "outline/text_runs.h"
#include "platform/font_data.h"
#include "platform/status.h"

namespace kerno {

enum class ShapeDirection { kLeftToRight, kRightToLeft, kTopToBottom };

// A run of a line, all of it in one direction and script.
struct ShapingRun {
  std::u16string_view line;  // the whole of it: letters join over the ends of a run
  size_t start = 0, length = 0;
  ShapeDirection direction = ShapeDirection::kLeftToRight;
  Script script = kCommonScript;
  std::string_view language = {};  // a BCP 47 tag; empty: the font's own way
  double spacing = 0;
};

// One glyph of a shaped run. Its origin is `offset` away from the pen, which then moves by
// `advance`.
struct ShapedGlyph {
  uint32_t glyph = 0;    // 0: the font has none for the character
  uint32_t cluster = 0;  // the UTF-16 unit of the line that its first character begins at
  P2 offset;
  P2 advance;
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
  // Those of the wanted features that the font has no rule for.
  std::vector<std::string> FeaturesWithoutRules() const;
  // The distance of two lines, or of two columns.
  double line_pitch(WritingMode mode) const;

  // Baseline to the middle of the font's own height: what stands on the axis of a column.
  double middle() const;

  // Kerning, ligatures, marks and whatever else the font turns on by itself. The glyphs stand left
  // to right or top to bottom. Spacing is added to the right of each cluster, or below it, but not
  // between letters of a script that joins them; with spacing optional ligatures are off.
  // Characters that only control the order or the form of others make no glyphs.
  std::vector<ShapedGlyph> Shape(const ShapingRun& run) const;

  bool HasGlyph(char32_t ch) const;
  // Whether the character has a form of its own for columns.
  bool HasVerticalForm(char32_t ch) const;

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
