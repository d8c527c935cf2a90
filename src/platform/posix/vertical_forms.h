// Which glyph stands for a character in vertical writing, and whether it is turned.
#pragma once

#include <memory>
#include <vector>

#include "platform/posix/free_type.h"

struct hb_face_t;

namespace kerno {

struct VerticalForm {
  FT_UInt glyph = 0;
  bool turned = false;  // by 90 degrees counter-clockwise
};

// The font's vertical alternates, from the features vert and vrt2 of its GSUB table.
//
// An "@" face is a horizontal one whose upright characters lie on their backs: a line of it that is
// turned clockwise, or a column of glyphs each turned so, reads from top to bottom. Characters that
// lie on their side in vertical writing therefore stay as they are here, with their common glyph.
// A character with an alternate of its own is drawn for the column: that one is always turned.
class VerticalForms {
 public:
  VerticalForm Find(FT_Face face, char32_t ch, FT_UInt glyph);

 private:
  struct HarfBuzzDeleter {
    void operator()(hb_face_t* face) const noexcept;
  };

  void Load(FT_Face face);
  FT_UInt Alternate(FT_UInt glyph, bool lies) const;

  bool loaded_ = false;
  std::unique_ptr<hb_face_t, HarfBuzzDeleter> face_;
  std::vector<unsigned> vert_lookups_;
  std::vector<unsigned> vrt2_lookups_;  // those that vert has not
};

}  // namespace kerno
