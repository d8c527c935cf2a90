#include "outline/text_layout.h"

#include <algorithm>
#include <limits>

#include "base/text.h"
#include "outline/glyph_cache.h"
#include "platform/stock_font.h"

namespace kerno {
namespace {

constexpr int32_t kEstimateFrom = 5000;

// The pen is kept in 64 bits: a text of 100,000 wide characters passes the 32 bits of the desktop's
// units.
struct Pen {
  int64_t x = 0;
  int64_t y = 0;
};

// Truncates towards zero.
int64_t VerticalAdvance(const GlyphMetrics& metrics, VerticalPitch pitch) {
  if (pitch == VerticalPitch::kCell) return metrics.gmCellIncX;
  return (int64_t{metrics.gmCellIncX} + int64_t{metrics.gmBlackBoxY}) / 2;
}

// The boxes of the placed glyphs: their union with the pen's origin, and where vertical ink meets.
// The box of a placed glyph is the moved box of the glyph: rounding keeps the order of numbers.
class InkWatch {
 public:
  void Place(const CachedGlyph& glyph, const P2& origin, bool vertical, LayoutNotes* notes) {
    if (glyph.contours.points.empty()) return;
    const P2 low = {glyph.ink_min.x + origin.x, glyph.ink_min.y + origin.y};
    const P2 high = {glyph.ink_max.x + origin.x, glyph.ink_max.y + origin.y};
    notes->low = {std::min(notes->low.x, low.x), std::min(notes->low.y, low.y)};
    notes->high = {std::max(notes->high.x, high.x), std::max(notes->high.y, high.y)};
    const bool meets =
        any_ && high.y > low_.y && low.y < high_.y && high.x > low_.x && low.x < high_.x;
    if (vertical && meets) ++notes->overlapping;
    low_ = low;
    high_ = high;
    any_ = true;
  }

 private:
  P2 low_, high_;
  bool any_ = false;
};

void NoteRefused(char32_t ch, std::vector<char32_t>* refused) {
  if (std::find(refused->begin(), refused->end(), ch) == refused->end()) refused->push_back(ch);
}

// Truncates towards zero; what passes the range ends at its limits.
template <class Number>
int32_t Saturated(Number value) {
  using Limits = std::numeric_limits<int32_t>;
  return static_cast<int32_t>(
      std::clamp(value, static_cast<Number>(Limits::min()), static_cast<Number>(Limits::max())));
}

LogFont MeasuringFont(bool vertical, int32_t height, int32_t width, double slant, double angle,
                      std::u16string_view face, int32_t weight, bool italic) {
  if (!vertical) {
    LogFont font = BuildLogFont(height, width, weight, face);
    font.italic = italic ? 1 : 0;
    font.escapement = Saturated(slant * 10);
    font.orientation = Saturated(angle * 10);
    return font;
  }
  LogFont font = BuildLogFont(width == 0 ? height : width, height / 2, weight, face);
  font.italic = italic ? 1 : 0;
  font.escapement = Saturated((slant + angle - 90) * 10);
  font.orientation = Saturated((angle - 90) * 10);
  return font;
}

StringExtent EstimateExtent(std::u16string_view text, bool vertical, int32_t height,
                            int32_t width) {
  int64_t columns = 0;
  for (size_t at = 0; at < text.size();) {
    const char32_t ch = NextCharacter(text, &at);
    const bool half_width = ch <= 0x7F || (ch >= 0xFF61 && ch <= 0xFF9F);
    columns += half_width ? 1 : 2;
  }
  const int64_t column = vertical || width == 0 ? height / 2 : width;
  return {Saturated(columns * column), height};
}

}  // namespace

LogFont BuildLogFont(int32_t height, int32_t width, int32_t weight, std::u16string_view face) {
  LogFont font = SystemLogFont();
  font.height = height;
  font.width = width;
  font.weight = weight;
  font.char_set = 1;  // DEFAULT_CHARSET
  font.face_name = face.substr(0, kMaxFaceName);
  return font;
}

GlyphRun LayOutGlyphs(DeviceContext& dc, std::u16string_view text, const LayoutOptions& options,
                      LayoutNotes* notes) {
  TextMetrics metrics;
  (void)dc.GetTextMetrics(&metrics);
  GlyphCache& glyphs = GlyphCache::Of(dc, metrics, options);
  GlyphRun run;
  run.reserve(text.size());
  InkWatch ink;
  Pen pen;
  for (size_t at = 0; at < text.size();) {
    const size_t character = at;
    const char32_t ch = NextCharacter(text, &at);
    if (ch == 0) break;
    if (ch == U'\r') {
      pen.x = 0;
    } else if (ch == U'\n') {
      pen.y -= metrics.tmHeight;
    } else if (ch == U'\t') {
      pen.x += metrics.tmAveCharWidth;
    } else {
      const CachedGlyph& glyph = glyphs.Get(dc, ch);
      if (glyph.refused) NoteRefused(ch, &notes->refused);
      if (options.vertical) pen.y -= VerticalAdvance(glyph.metrics, options.pitch);
      const P2 origin = {static_cast<double>(pen.x), static_cast<double>(pen.y)};
      ink.Place(glyph, origin, options.vertical, notes);
      run.push_back({&glyph, origin, character});
      if (!options.vertical) pen.x += glyph.metrics.gmCellIncX;
    }
  }
  return run;
}

uint32_t AppendContours(const GlyphRun& run, GlyphContours* contours) {
  size_t points = contours->points.size();
  const size_t before = contours->counts.size();
  size_t counts = before;
  for (const PlacedGlyph& placed : run) {
    points += placed.glyph->contours.points.size();
    counts += placed.glyph->contours.counts.size();
  }
  contours->points.reserve(points);
  contours->counts.reserve(counts);
  for (const auto& [glyph, origin, character] : run) {
    contours->counts.insert(contours->counts.end(), glyph->contours.counts.begin(),
                            glyph->contours.counts.end());
    for (const P2& p : glyph->contours.points) {
      contours->points.push_back({p.x + origin.x, p.y + origin.y});
    }
  }
  return static_cast<uint32_t>(counts - before);
}

uint32_t LayoutString(DeviceContext& dc, std::u16string_view text, const LayoutOptions& options,
                      GlyphContours* contours, LayoutNotes* notes) {
  LayoutNotes own;
  if (!notes) notes = &own;
  *notes = {};
  return AppendContours(LayOutGlyphs(dc, text, options, notes), contours);
}

void PlaceBlock(std::vector<P2>* points, const BlockPlacement& placement) {
  P2 low, high;  // from the origin on, not from the first point
  for (const P2& p : *points) {
    low = {std::min(low.x, p.x), std::min(low.y, p.y)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y)};
  }
  PlaceBlock(points, low, high, placement);
}

void PlaceBlock(std::vector<P2>* points, P2 low, P2 high, const BlockPlacement& placement) {
  for (const Affine& map : PlacementMaps(low, high, placement)) {
    for (P2& p : *points) p = map.Apply(p);
  }
}

std::vector<Affine> PlacementMaps(P2 low, P2 high, const BlockPlacement& placement) {
  const P2 centre = Midpoint(low, high);
  std::vector<Affine> maps;
  if (placement.slant != 0) maps.push_back(Leaned(placement.slant, centre.y));
  if (placement.angle != 0) maps.push_back(Turned(placement.angle, centre));
  maps.push_back(FlippedY(1, {placement.insertion.x - centre.x, placement.insertion.y + centre.y}));
  return maps;
}

StringExtent MeasureString(DeviceContext* dc, std::u16string_view text, bool vertical,
                           int32_t height, int32_t width, double slant, double angle,
                           std::u16string_view face, int32_t weight, bool italic) {
  if (!dc || height >= kEstimateFrom || width >= kEstimateFrom) {
    return EstimateExtent(text, vertical, height, width);
  }
  const auto font = dc->CreateFontIndirect(
      MeasuringFont(vertical, height, width, slant, angle, face, weight, italic));
  if (!font) return EstimateExtent(text, vertical, height, width);
  Font* before = dc->SelectFont(font.get());
  Extent extent;
  (void)dc->GetTextExtent(text, &extent);
  dc->SelectFont(before);
  return {extent.cx, extent.cy};
}

}  // namespace kerno
