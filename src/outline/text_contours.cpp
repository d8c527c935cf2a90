#include "outline/text_contours.h"

#include <algorithm>
#include <cmath>
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

// Without a turn, the box of a moved glyph is the moved box of the glyph: rounding keeps the order
// of numbers.
std::optional<Box2> TextContours::QuickBox() const {
  for (const Affine& map : maps_) {
    if (map.xy != 0 || map.yx != 0) return std::nullopt;
  }
  std::vector<std::optional<Box2>> boxes(starts_.size());  // of glyphs, by their first outline
  Box2 all;
  for (size_t i = 0; i < places_.size(); ++i) {
    const Place& place = places_[i];
    std::optional<Box2>& box = boxes[place.outline];
    if (!box) {
      box.emplace();
      const size_t end = starts_[place.outline + ContoursAt(i)];
      for (size_t k = starts_[place.outline]; k < end; ++k) Include(&*box, points_[k]);
    }
    if (!(box->min.x <= box->max.x)) continue;
    for (P2 corner : {box->min, box->max}) {
      corner = corner + place.origin;
      for (const Affine& map : maps_) corner = map.Apply(corner);
      Include(&all, corner);
    }
  }
  return all;
}

TextContours TextContours::Reduced(double detail) const {
  TextContours reduced;
  reduced.places_ = places_;
  reduced.place_of_ = place_of_;
  reduced.maps_ = maps_;
  reduced.starts_.reserve(starts_.size());
  std::vector<P2>& kept = reduced.points_;
  for (size_t i = 0; i + 1 < starts_.size(); ++i) {
    const size_t first = kept.size();
    bool dropped = false;
    for (size_t k = starts_[i]; k < starts_[i + 1]; ++k) {
      const P2& p = points_[k];
      dropped = kept.size() > first && std::fabs(p.x - kept.back().x) < detail &&
                std::fabs(p.y - kept.back().y) < detail;
      if (!dropped) kept.push_back(p);
    }
    if (dropped) {
      if (kept.size() == first + 1) kept.emplace_back();
      kept.back() = points_[starts_[i + 1] - 1];
    }
    reduced.starts_.push_back(kept.size());
  }
  for (size_t i = 0; i < size(); ++i) reduced.point_count_ += reduced.PointsOf(i);
  return reduced;
}

}  // namespace kerno
