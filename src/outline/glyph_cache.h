// Flattened outlines of the selected font, kept with the font: a character met again costs a copy.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <unordered_map>

#include "outline/glyph_contours.h"
#include "platform/device_context.h"

namespace kerno {

// How each character of a text is turned and set in its cell, [0, advance] x [-tmDescent,
// tmAscent].
struct CellPose {
  double angle = 0;     // degrees, about the middle of the cell
  bool column = false;  // turned cells have their middle on one line, half an em from the pen
  // In a column: each cell has its lower end where that of a cell of one em would be.
  bool stacked = false;

  bool operator==(const CellPose&) const = default;
};

// Contours in the cache's pose, y up, the pen at the origin.
struct CachedGlyph {
  GlyphMetrics metrics;
  GlyphContours contours;
  P2 ink_min, ink_max;   // the box of the points; empty glyphs have none
  bool refused = false;  // the rasteriser gave nothing, not even metrics; then all else is empty
};

class GlyphCache {
 public:
  // The cache of the font selected into `dc`. It lives as long as the font, or until another pose
  // is asked for.
  static GlyphCache& Of(DeviceContext& dc, const TextMetrics& metrics, CellPose pose);

  GlyphCache(const TextMetrics& metrics, CellPose pose) : metrics_(metrics), pose_(pose) {}

  // What the rasteriser refuses is not kept: its message is drawn each time. The reference is good
  // as long as the cache.
  const CachedGlyph& Get(DeviceContext& dc, char32_t ch);

 private:
  CachedGlyph Make(DeviceContext& dc, char32_t ch) const;
  void ApplyPose(CachedGlyph* glyph) const;

  static constexpr char32_t kDirect = 0x250;  // Latin letters need no look-up

  TextMetrics metrics_;
  CellPose pose_;
  std::array<std::unique_ptr<CachedGlyph>, kDirect> direct_;
  std::unordered_map<char32_t, std::unique_ptr<CachedGlyph>> others_;
};

}  // namespace kerno
