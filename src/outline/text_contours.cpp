#include "outline/text_contours.h"

#include <unordered_map>

namespace kerno {

TextContours::TextContours(const GlyphRun& run) {
  size_t contours = 0;
  for (const PlacedGlyph& placed : run) contours += placed.glyph->contours.counts.size();
  places_.reserve(run.size());
  place_of_.reserve(contours);
  std::unordered_map<const CachedGlyph*, uint32_t> known;
  for (const auto& [glyph, origin, character] : run) {
    if (glyph->contours.counts.empty()) continue;
    const auto [kept, is_new] = known.try_emplace(glyph, 0);
    if (is_new) kept->second = AddOutlines(glyph->contours);
    AddPlace(kept->second, glyph->contours, origin);
  }
}

TextContours::TextContours(const GlyphContours& contours) {
  AddPlace(AddOutlines(contours), contours, {});
}

// The number of the first.
uint32_t TextContours::AddOutlines(const GlyphContours& contours) {
  const auto first = static_cast<uint32_t>(starts_.size() - 1);
  for (const uint32_t count : contours.counts) starts_.push_back(starts_.back() + count);
  points_.insert(points_.end(), contours.points.begin(), contours.points.end());
  return first;
}

void TextContours::AddPlace(uint32_t outline, const GlyphContours& contours, const P2& origin) {
  const auto place = static_cast<uint32_t>(places_.size());
  places_.push_back({outline, static_cast<uint32_t>(place_of_.size()), origin});
  place_of_.insert(place_of_.end(), contours.counts.size(), place);
  point_count_ += contours.points.size();
}

std::span<const P2> TextContours::Contour(size_t i, std::vector<P2>* room) const {
  const size_t outline = OutlineOf(i);
  const P2 origin = places_[place_of_[i]].origin;
  const size_t count = PointsOf(i);
  const P2* const from = points_.data() + starts_[outline];
  if (room->size() < count) room->resize(count);
  P2* const to = room->data();
  for (size_t k = 0; k < count; ++k) to[k] = {from[k].x + origin.x, from[k].y + origin.y};
  for (const Affine& map : maps_) {
    for (size_t k = 0; k < count; ++k) to[k] = map.Apply(to[k]);
  }
  return {to, count};
}

}  // namespace kerno
