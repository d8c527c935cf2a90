#include "platform/posix/vertical_forms.h"

#include <hb-ft.h>
#include <hb-ot.h>
#include <hb.h>

#include <algorithm>
#include <iterator>

namespace kerno {
namespace {

struct OrientationRange {
  char32_t first;
  char32_t last;
  VerticalOrientation orientation;
};

constexpr OrientationRange kOrientations[] = {
#include "platform/posix/vertical_orientation.inc"
};

// Lookups of a GSUB feature for every script, each in its default language: a font files its comma
// under the script of its text, and the face was chosen for its language already.
std::vector<unsigned> LookupsOf(hb_face_t* face, hb_tag_t feature) {
  std::vector<unsigned> lookups;
  const unsigned scripts =
      hb_ot_layout_table_get_script_tags(face, HB_OT_TAG_GSUB, 0, nullptr, nullptr);
  for (unsigned script = 0; script < scripts; ++script) {
    unsigned index = 0;
    if (!hb_ot_layout_language_find_feature(face, HB_OT_TAG_GSUB, script,
                                            HB_OT_LAYOUT_DEFAULT_LANGUAGE_INDEX, feature, &index)) {
      continue;
    }
    unsigned count =
        hb_ot_layout_feature_get_lookups(face, HB_OT_TAG_GSUB, index, 0, nullptr, nullptr);
    const size_t before = lookups.size();
    lookups.resize(before + count);
    hb_ot_layout_feature_get_lookups(face, HB_OT_TAG_GSUB, index, 0, &count,
                                     lookups.data() + before);
    lookups.resize(before + count);
  }
  return lookups;
}

// The glyph that a lookup puts in place of another, or the same glyph.
hb_codepoint_t Substitute(hb_face_t* face, unsigned lookup, hb_codepoint_t glyph) {
  hb_set_t* glyphs = hb_set_create();
  hb_set_add(glyphs, glyph);
  hb_ot_layout_lookup_substitute_closure(face, lookup, glyphs);
  hb_set_del(glyphs, glyph);
  const hb_codepoint_t found = hb_set_get_min(glyphs);
  hb_set_destroy(glyphs);
  return found == HB_SET_VALUE_INVALID ? glyph : found;
}

}  // namespace

VerticalOrientation VerticalOrientationOf(char32_t ch) {
  const auto* range =
      std::lower_bound(std::begin(kOrientations), std::end(kOrientations), ch,
                       [](const OrientationRange& r, char32_t c) { return r.last < c; });
  return range != std::end(kOrientations) && range->first <= ch ? range->orientation
                                                                : VerticalOrientation::kRotated;
}

void VerticalForms::HarfBuzzDeleter::operator()(hb_face_t* face) const noexcept {
  hb_face_destroy(face);
}

void VerticalForms::Load(FT_Face face) {
  loaded_ = true;
  face_.reset(hb_ft_face_create_referenced(face));
  for (const hb_tag_t feature : {HB_TAG('v', 'e', 'r', 't'), HB_TAG('v', 'r', 't', '2')}) {
    for (const unsigned lookup : LookupsOf(face_.get(), feature)) {
      if (std::find(lookups_.begin(), lookups_.end(), lookup) == lookups_.end()) {
        lookups_.push_back(lookup);
      }
    }
  }
}

FT_UInt VerticalForms::Alternate(FT_UInt glyph) const {
  for (const unsigned lookup : lookups_) {
    const hb_codepoint_t alternate = Substitute(face_.get(), lookup, glyph);
    if (alternate != glyph) {
      return alternate;
    }
  }
  return glyph;
}

VerticalForm VerticalForms::Find(FT_Face face, char32_t ch, FT_UInt glyph) {
  const VerticalOrientation orientation = VerticalOrientationOf(ch);
  if (orientation == VerticalOrientation::kRotated) {
    return {glyph, false};
  }
  if (!loaded_) {
    Load(face);
  }
  // A font with vertical alternates says by leaving a bracket or a bar out that it stands as it is;
  // one without any never thought of vertical writing, and such characters then lie on their side.
  const bool lies = orientation == VerticalOrientation::kTransformedRotated && lookups_.empty();
  return {Alternate(glyph), !lies};
}

}  // namespace kerno
