// Flattened outlines of the selected font, kept with the font: a character met again costs a copy.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <unordered_map>

#include "outline/glyph_contours.h"
#include "platform/device_context.h"

namespace kerno {

// Contours turned by the cache's character angle, y up, the pen at the origin.
struct CachedGlyph {
  GlyphMetrics metrics;
  GlyphContours contours;
  P2 ink_min, ink_max;  // the box of the points; empty glyphs have none
};

class GlyphCache {
 public:
  // The cache of the font selected into `dc` for a character angle (degrees, about the centre of
  // the cell [0, advance] x [-tmDescent, tmAscent]). It lives as long as the font, or until another
  // angle is asked for.
  static GlyphCache& Of(DeviceContext& dc, const TextMetrics& metrics, double angle);

  GlyphCache(const TextMetrics& metrics, double angle) : metrics_(metrics), angle_(angle) {}

  // The glyph if it is kept, else null.
  const CachedGlyph* Find(char32_t ch) const;

  // What the rasteriser refuses is not kept: its message is drawn each time. The reference is good
  // until the next call.
  const CachedGlyph& Get(DeviceContext& dc, char32_t ch);

 private:
  CachedGlyph Make(DeviceContext& dc, char32_t ch, bool* refused) const;

  static constexpr char32_t kDirect = 0x250;  // Latin letters need no look-up

  TextMetrics metrics_;
  double angle_;
  std::array<std::unique_ptr<CachedGlyph>, kDirect> direct_;
  std::unordered_map<char32_t, std::unique_ptr<CachedGlyph>> others_;
  CachedGlyph refused_;
};

}  // namespace kerno
