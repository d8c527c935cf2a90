#include "platform/posix/vertical_forms.h"

#include <hb-ft.h>
#include <hb-ot.h>
#include <hb.h>

#include <algorithm>

#include "platform/memory_watch.h"
#include "platform/vertical_orientation.h"

namespace kerno {
namespace {

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

void VerticalForms::HarfBuzzDeleter::operator()(hb_face_t* face) const noexcept {
  hb_face_destroy(face);
}

void VerticalForms::Load(FT_Face face) {
  loaded_ = true;
  face_.reset(hb_ft_face_create_referenced(face));
  vert_lookups_ = LookupsOf(face_.get(), HB_TAG('v', 'e', 'r', 't'));
  for (const unsigned lookup : LookupsOf(face_.get(), HB_TAG('v', 'r', 't', '2'))) {
    if (std::find(vert_lookups_.begin(), vert_lookups_.end(), lookup) == vert_lookups_.end()) {
      vrt2_lookups_.push_back(lookup);
    }
  }
}

// The feature vrt2 also holds glyphs that were turned by the designer, for characters that lie on
// their side: those characters look into vert alone.
FT_UInt VerticalForms::Alternate(FT_UInt glyph, bool lies) const {
  for (const auto* lookups : {&vert_lookups_, &vrt2_lookups_}) {
    if (lies && lookups == &vrt2_lookups_) break;
    for (const unsigned lookup : *lookups) {
      const hb_codepoint_t alternate = Substitute(face_.get(), lookup, glyph);
      if (alternate != glyph) {
        return alternate;
      }
    }
  }
  return glyph;
}

VerticalForm VerticalForms::Find(FT_Face face, char32_t ch, FT_UInt glyph) {
  const MemoryWatch watch;
  if (!loaded_) {
    Load(face);
  }
  const VerticalOrientation orientation = VerticalOrientationOf(ch);
  const FT_UInt alternate = Alternate(glyph, orientation == VerticalOrientation::kRotated);
  watch.Check();
  const bool stands = orientation == VerticalOrientation::kUpright ||
                      orientation == VerticalOrientation::kTransformedUpright;
  return {alternate, stands || alternate != glyph};
}

}  // namespace kerno
