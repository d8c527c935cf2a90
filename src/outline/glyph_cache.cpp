#include "outline/glyph_cache.h"

#include <algorithm>
#include <limits>

#include "drawing/affine.h"
#include "outline/glyph_outline.h"

namespace kerno {
namespace {

// A context that works with its stock font has no font object to keep a cache with.
GlyphCache& Unkept(const TextMetrics& metrics, const LayoutOptions& options) {
  static std::unique_ptr<GlyphCache> last;
  last = std::make_unique<GlyphCache>(metrics, options);
  return *last;
}

}  // namespace

GlyphCache& GlyphCache::Of(DeviceContext& dc, const TextMetrics& metrics,
                           const LayoutOptions& options) {
  Font* font = dc.SelectedFont();
  if (!font) return Unkept(metrics, options);
  auto cache = std::static_pointer_cast<GlyphCache>(font->derived);
  if (!cache || !(cache->options_ == options)) {
    cache = std::make_shared<GlyphCache>(metrics, options);
    font->derived = cache;
  }
  return *cache;
}

const CachedGlyph& GlyphCache::Get(DeviceContext& dc, char32_t ch) {
  std::unique_ptr<CachedGlyph>& kept = ch < kDirect ? direct_[ch] : others_[ch];
  if (kept) return *kept;
  static const CachedGlyph refused = [] {
    CachedGlyph empty;
    empty.refused = true;
    return empty;
  }();
  CachedGlyph glyph = Make(dc, ch);
  if (glyph.refused) return refused;
  kept = std::make_unique<CachedGlyph>(std::move(glyph));
  return *kept;
}

// Turns a glyph about the middle of its cell, [0, advance] x [-tmDescent, tmAscent]. Turned about
// its own middle, a narrow cell (a Latin letter on its side) would hang to the left of the wide
// ones; so in a column the middles stand on one line, half an em from the pen. Where the pen moves
// by whole cells a narrow one would reach into the one above; so each has its lower end where that
// of a cell of one em would be.
void GlyphCache::Turn(CachedGlyph* glyph) const {
  const P2 middle = {glyph->metrics.gmCellIncX * 0.5,
                     (metrics_.tmAscent - metrics_.tmDescent) * 0.5};
  const Affine turn = Turned(options_.character_angle, middle);
  const double half_em = (metrics_.tmHeight - metrics_.tmInternalLeading) * 0.5;
  const double inwards = options_.vertical ? half_em - middle.x : 0;
  for (P2& p : glyph->contours.points) {
    p = turn.Apply(p);
    p.x += inwards;
    if (options_.pitch == VerticalPitch::kCell) p.y -= inwards;
  }
}

CachedGlyph GlyphCache::Make(DeviceContext& dc, char32_t ch) const {
  constexpr uint32_t kUntouched = std::numeric_limits<uint32_t>::max();
  CachedGlyph glyph;
  // A refused character leaves its metrics as they were.
  glyph.metrics.gmBlackBoxX = kUntouched;
  for (const Path& path : GetGlyphPaths(dc, ch, &glyph.metrics)) {
    FlattenClassic(path, &glyph.contours);
  }
  glyph.refused = glyph.metrics.gmBlackBoxX == kUntouched;
  if (glyph.refused) return glyph;
  if (options_.character_angle != 0) Turn(&glyph);
  if (!glyph.contours.points.empty()) glyph.ink_min = glyph.ink_max = glyph.contours.points[0];
  for (const P2& p : glyph.contours.points) {
    glyph.ink_min = {std::min(glyph.ink_min.x, p.x), std::min(glyph.ink_min.y, p.y)};
    glyph.ink_max = {std::max(glyph.ink_max.x, p.x), std::max(glyph.ink_max.y, p.y)};
  }
  return glyph;
}

}  // namespace kerno
