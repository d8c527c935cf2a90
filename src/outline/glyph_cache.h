// Flattened outlines of the selected font, kept with the font: a character met again costs a copy.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <unordered_map>

#include "outline/glyph_contours.h"
#include "outline/layout_options.h"
#include "platform/device_context.h"

namespace kerno {

// Contours as the cache's options have them, y up, the pen at the origin.
struct CachedGlyph {
  GlyphMetrics metrics;
  GlyphContours contours;
  P2 ink_min, ink_max;   // the box of the points; empty glyphs have none
  bool refused = false;  // the rasteriser gave nothing, not even metrics; then all else is empty
};

class GlyphCache {
 public:
  // The cache of the font selected into `dc`. It lives as long as the font, or until other options
  // are asked for.
  static GlyphCache& Of(DeviceContext& dc, const TextMetrics& metrics,
                        const LayoutOptions& options);

  GlyphCache(const TextMetrics& metrics, const LayoutOptions& options)
      : metrics_(metrics), options_(options) {}

  // What the rasteriser refuses is not kept: its message is drawn each time. The reference is good
  // as long as the cache.
  const CachedGlyph& Get(DeviceContext& dc, char32_t ch);

 private:
  CachedGlyph Make(DeviceContext& dc, char32_t ch) const;
  void Turn(CachedGlyph* glyph) const;

  static constexpr char32_t kDirect = 0x250;  // Latin letters need no look-up

  TextMetrics metrics_;
  LayoutOptions options_;
  std::array<std::unique_ptr<CachedGlyph>, kDirect> direct_;
  std::unordered_map<char32_t, std::unique_ptr<CachedGlyph>> others_;
};

}  // namespace kerno
