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

// A character with a form of its own (a comma at the upper right, an upright bracket) gets it
// whatever script the font files it under: the lookups of all scripts are tried.
void VerticalForms::Load(FT_Face face) {
  loaded_ = true;
  face_.reset(hb_ft_face_create_referenced(face));
  for (const hb_tag_t feature : {HB_TAG('v', 'e', 'r', 't'), HB_TAG('v', 'r', 't', '2')}) {
    const hb_tag_t features[] = {feature, HB_TAG_NONE};
    hb_set_t* found = hb_set_create();
    hb_ot_layout_collect_lookups(face_.get(), HB_OT_TAG_GSUB, nullptr, nullptr, features, found);
    for (hb_codepoint_t lookup = HB_SET_VALUE_INVALID; hb_set_next(found, &lookup) != 0;) {
      lookups_.push_back(lookup);
    }
    hb_set_destroy(found);
  }
}

FT_UInt VerticalForms::Alternate(FT_UInt glyph) const {
  for (const unsigned lookup : lookups_) {
    unsigned count = 1;
    hb_codepoint_t alternate = 0;
    hb_ot_layout_lookup_get_glyph_alternates(face_.get(), lookup, glyph, 0, &count, &alternate);
    if (count == 1 && alternate != glyph) {
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
  const FT_UInt alternate = Alternate(glyph);
  const bool lies = orientation == VerticalOrientation::kTransformedRotated && alternate == glyph;
  return {alternate, !lies};
}

}  // namespace kerno
