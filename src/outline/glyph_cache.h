// Flattened outlines of the selected font, kept with the font: a character met again costs a copy.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <unordered_map>

#include "outline/glyph_contours.h"
#include "platform/device_context.h"

namespace kerno {

// How the characters of a text stand.
struct CharacterStance {
  double angle = 0;  // degrees, about the middle of the cell [0, advance] x [-tmDescent, tmAscent]
  bool column = false;  // turned cells have their middle on one line, half an em from the pen
  // In a column: each cell has its lower end where that of a cell of one em would be.
  bool stacked = false;

  bool operator==(const CharacterStance&) const = default;
};

// Contours in the cache's stance, y up, the pen at the origin.
struct CachedGlyph {
  GlyphMetrics metrics;
  GlyphContours contours;
  P2 ink_min, ink_max;   // the box of the points; empty glyphs have none
  bool refused = false;  // the rasteriser gave nothing, not even metrics
};

class GlyphCache {
 public:
  // The cache of the font selected into `dc`. It lives as long as the font, or until another stance
  // is asked for.
  static GlyphCache& Of(DeviceContext& dc, const TextMetrics& metrics, CharacterStance stance);

  GlyphCache(const TextMetrics& metrics, CharacterStance stance)
      : metrics_(metrics), stance_(stance) {}

  // The glyph if it is kept, else null.
  const CachedGlyph* Find(char32_t ch) const;

  // What the rasteriser refuses is not kept: its message is drawn each time. The reference is good
  // until the next call.
  const CachedGlyph& Get(DeviceContext& dc, char32_t ch);

 private:
  CachedGlyph Make(DeviceContext& dc, char32_t ch) const;
  void Stand(CachedGlyph* glyph) const;

  static constexpr char32_t kDirect = 0x250;  // Latin letters need no look-up

  TextMetrics metrics_;
  CharacterStance stance_;
  std::array<std::unique_ptr<CachedGlyph>, kDirect> direct_;
  std::unordered_map<char32_t, std::unique_ptr<CachedGlyph>> others_;
  CachedGlyph refused_;
};

}  // namespace kerno
