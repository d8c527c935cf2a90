#include "outline/text_layout.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "base/text.h"
#include "drawing/affine.h"
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

bool IsPenControl(char32_t ch) {
  return ch == U'\r' || ch == U'\n' || ch == U'\t';
}

void AppendGlyph(const CachedGlyph& glyph, const Pen& pen, GlyphContours* contours) {
  contours->counts.insert(contours->counts.end(), glyph.contours.counts.begin(),
                          glyph.contours.counts.end());
  const P2 offset = {static_cast<double>(pen.x), static_cast<double>(pen.y)};
  const size_t before = contours->points.size();
  contours->points.insert(contours->points.end(), glyph.contours.points.begin(),
                          glyph.contours.points.end());
  for (size_t i = before; i < contours->points.size(); ++i) {
    contours->points[i].x += offset.x;
    contours->points[i].y += offset.y;
  }
}

// Truncates towards zero.
int64_t VerticalAdvance(const GlyphMetrics& metrics, VerticalPitch pitch) {
  if (pitch == VerticalPitch::kCell) return metrics.gmCellIncX;
  return (int64_t{metrics.gmCellIncX} + int64_t{metrics.gmBlackBoxY}) / 2;
}

// The boxes of the placed glyphs: their union with the pen's origin, and where vertical ink meets.
// The box of a placed glyph is the moved box of the glyph: rounding keeps the order of numbers.
class InkWatch {
 public:
  void Place(const CachedGlyph& glyph, const Pen& pen, bool vertical, LayoutNotes* notes) {
    if (glyph.contours.points.empty()) return;
    const auto x = static_cast<double>(pen.x);
    const auto y = static_cast<double>(pen.y);
    const P2 low = {glyph.ink_min.x + x, glyph.ink_min.y + y};
    const P2 high = {glyph.ink_max.x + x, glyph.ink_max.y + y};
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

// Makes room at once for what a long text has of glyphs met before, so that its points are not
// copied again and again.
void ReserveFor(const GlyphCache& glyphs, std::u16string_view text, GlyphContours* contours) {
  constexpr size_t kLongText = 2000;
  if (text.size() < kLongText) return;
  size_t points = contours->points.size();
  size_t counts = contours->counts.size();
  for (size_t at = 0; at < text.size();) {
    const char32_t ch = NextCharacter(text, &at);
    if (ch == 0) break;
    if (IsPenControl(ch)) continue;
    const CachedGlyph* glyph = glyphs.Find(ch);
    if (!glyph) continue;
    points += glyph->contours.points.size();
    counts += glyph->contours.counts.size();
  }
  contours->points.reserve(points);
  contours->counts.reserve(counts);
}

// Truncates towards zero; what passes the range ends at its limits.
template <class Number>
int32_t Saturated(Number value) {
  using Limits = std::numeric_limits<int32_t>;
  return static_cast<int32_t>(
      std::clamp(value, static_cast<Number>(Limits::min()), static_cast<Number>(Limits::max())));
}

LogFont MeasuringFont(bool vertical, int32_t height, int32_t width, double slant, double angle,
                      std::u16string_view face, int32_t weight) {
  if (!vertical) {
    LogFont font = BuildLogFont(height, width, weight, face);
    font.escapement = Saturated(slant * 10);
    font.orientation = Saturated(angle * 10);
    return font;
  }
  LogFont font = BuildLogFont(width == 0 ? height : width, height / 2, weight, face);
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

uint32_t LayoutString(DeviceContext& dc, std::u16string_view text, const LayoutOptions& options,
                      GlyphContours* contours, LayoutNotes* notes) {
  TextMetrics metrics;
  (void)dc.GetTextMetrics(&metrics);
  const size_t before = contours->counts.size();
  GlyphCache& glyphs = GlyphCache::Of(
      dc, metrics,
      {options.character_angle, options.vertical, options.pitch == VerticalPitch::kCell});
  ReserveFor(glyphs, text, contours);
  LayoutNotes noted;
  InkWatch ink;
  Pen pen;
  for (size_t at = 0; at < text.size();) {
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
      if (glyph.refused) NoteRefused(ch, &noted.refused);
      if (options.vertical) pen.y -= VerticalAdvance(glyph.metrics, options.pitch);
      ink.Place(glyph, pen, options.vertical, &noted);
      AppendGlyph(glyph, pen, contours);
      if (!options.vertical) pen.x += glyph.metrics.gmCellIncX;
    }
  }
  if (notes) *notes = std::move(noted);
  return static_cast<uint32_t>(contours->counts.size() - before);
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
  const P2 centre = Midpoint(low, high);
  const auto apply = [&](const Affine& map) {
    for (P2& p : *points) p = map.Apply(p);
  };
  if (placement.slant != 0) apply(Leaned(placement.slant, centre.y));
  if (placement.angle != 0) apply(Turned(placement.angle, centre));
  apply(FlippedY(1, {placement.insertion.x - centre.x, placement.insertion.y + centre.y}));
}

uint32_t StringOutline(DeviceContext& dc, const TextRequest& request, GlyphContours* contours) {
  contours->points.clear();
  contours->counts.clear();
  const auto font = dc.CreateFontIndirect(
      BuildLogFont(request.height, request.width, request.weight, request.face));
  if (!font) return 0;
  Font* before = dc.SelectFont(font.get());
  LayoutNotes notes;
  const uint32_t count = LayoutString(dc, request.text, request.layout, contours, &notes);
  dc.SelectFont(before);
  PlaceBlock(&contours->points, notes.low, notes.high, request.placement);
  return count;
}

StringExtent MeasureString(DeviceContext* dc, std::u16string_view text, bool vertical,
                           int32_t height, int32_t width, double slant, double angle,
                           std::u16string_view face, int32_t weight) {
  if (!dc || height >= kEstimateFrom || width >= kEstimateFrom) {
    return EstimateExtent(text, vertical, height, width);
  }
  const auto font =
      dc->CreateFontIndirect(MeasuringFont(vertical, height, width, slant, angle, face, weight));
  if (!font) return EstimateExtent(text, vertical, height, width);
  Font* before = dc->SelectFont(font.get());
  Extent extent;
  (void)dc->GetTextExtent(text, &extent);
  dc->SelectFont(before);
  return {extent.cx, extent.cy};
}

}  // namespace kerno
