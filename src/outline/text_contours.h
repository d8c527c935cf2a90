// The contours of a text that was set, the outline of each different glyph kept once: a text takes
// the room of its glyphs and some bytes for each of its characters, not that of all its points.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "drawing/affine.h"
#include "drawing/vector.h"
#include "outline/glyph_contours.h"
#include "outline/text_layout.h"

namespace kerno {

// Contours in the order of the text, each closed. A point is that of its glyph, moved to where the
// pen stood, after all maps; it is computed each time it is asked for, with the same result.
class TextContours {
 public:
  TextContours() = default;
  explicit TextContours(const GlyphRun& run);
  explicit TextContours(const GlyphContours& contours);

  size_t size() const { return place_of_.size(); }
  bool empty() const { return place_of_.empty(); }
  size_t point_count() const { return point_count_; }
  size_t PointsOf(size_t i) const {
    const size_t outline = OutlineOf(i);
    return starts_[outline + 1] - starts_[outline];
  }

  // Adds a map after those that there are.
  void Apply(const Affine& map) { maps_.push_back(map); }

  // The points of a contour: the first of `room`, which grows where it is too short.
  std::span<const P2> Contour(size_t i, std::vector<P2>* room) const;

  // The box of all points, empty where there are none. Nothing where maps turn or lean, so that it
  // would take a look at every point.
  std::optional<Box2> QuickBox() const;

  // The same contours with fewer points: those are dropped that are nearer than `detail` to the
  // last one kept, both ways, in the units of the glyphs. A contour keeps its last point.
  TextContours Reduced(double detail) const;

  // Calls `visit` with every point, contour by contour.
  template <class Visit>
  void EachPoint(const Visit& visit) const {
    std::vector<P2> room;
    for (size_t i = 0; i < size(); ++i) {
      for (const P2& p : Contour(i, &room)) visit(p);
    }
  }

 private:
  // A glyph in the text.
  struct Place {
    uint32_t outline = 0;  // of its first contour
    uint32_t first = 0;    // its first contour's number in the text
    P2 origin;
  };

  size_t OutlineOf(size_t i) const {
    const Place& place = places_[place_of_[i]];
    return place.outline + (i - place.first);
  }
  uint32_t AddOutlines(const GlyphContours& contours);
  size_t ContoursAt(size_t place) const {
    const size_t next = place + 1 < places_.size() ? places_[place + 1].first : place_of_.size();
    return next - places_[place].first;
  }
  void AddPlace(uint32_t outline, const GlyphContours& contours, const P2& origin);

  std::vector<P2> points_;            // of the outlines, one after the other
  std::vector<size_t> starts_ = {0};  // where those of each begin, and the end of the last
  std::vector<Place> places_;
  std::vector<uint32_t> place_of_;  // of each contour
  std::vector<Affine> maps_;
  size_t point_count_ = 0;
};

}  // namespace kerno
