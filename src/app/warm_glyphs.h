// What one drawing leaves to the next: an open font, the boxes of its glyphs, finished shapes.
#pragma once

#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <unordered_map>
#include <vector>

#include "app/glyph_source.h"
#include "app/shape_maker.h"

namespace kerno {

// A shape with what is told of it.
struct WarmShape {
  Shape shape;
  ShapeNotes notes;
};

// Shapes by what they are made of.
class ShapeStore {
 public:
  using Key = std::vector<double>;

  // Null where there is none yet. Pointers live until Trim.
  const WarmShape* Find(const Key& key) const;
  void Keep(const Key& key, const Shape& shape, const ShapeNotes& notes);
  // Forgets everything when it has become large.
  void Trim();

 private:
  std::map<Key, WarmShape> shapes_;
  size_t segments_ = 0;
};

// Of one source of glyphs; for one thread at a time.
class WarmGlyphs {
 public:
  explicit WarmGlyphs(std::unique_ptr<GlyphSource> source) : source_(std::move(source)) {}

  const GlyphSource& source() const { return *source_; }

  // Forgets everything but the source when it has become much. Called before a text.
  void Trim();

  // The number of a form, the same for every text until Trim.
  uint32_t IdOf(const GlyphForm& form);

  // The boxes that are known of glyphs in their forms (KeyOf) under a map. Valid until another map
  // is asked for.
  using Inks = std::unordered_map<uint64_t, Box2>;
  Inks& InksUnder(const Linear& map);
  // Whether boxes under the map were asked for not long ago.
  bool Knows(const Linear& map) const;
  static uint64_t KeyOf(uint32_t form_id, uint32_t glyph) {
    return uint64_t{form_id} << 32 | glyph;
  }

  // The shapes that jobs like this one make under a map. Valid until it is called again.
  ShapeStore& ShapesFor(const CutJob& job, const Linear& map);

 private:
  struct KnownInks {
    Linear map;
    Inks inks;
  };
  struct KnownShapes {
    Linear map;
    CutJob job;
    ShapeStore store;
  };
  std::unique_ptr<GlyphSource> source_;
  std::vector<GlyphForm> forms_;
  std::list<KnownInks> inks_;      // those used last come first
  std::list<KnownShapes> shapes_;  // so do these
};

}  // namespace kerno
