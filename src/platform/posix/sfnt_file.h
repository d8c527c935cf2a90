// A look at a font file in the "sfnt" container (OpenType, TrueType and their collections) that
// does not need the rasteriser: is the file whole, and what does its OS/2 table tell.
#pragma once

#include <cstdint>
#include <string>

#include "platform/status.h"

namespace kerno {

struct SfntFacts {
  // False for a file that cannot be read, is empty, or ends before a table that outlines need.
  // A file in another container is taken for whole.
  bool whole = false;
  Status reading;  // of a file that cannot be read, or is empty, the failure
  bool has_os2 = false;
  uint8_t panose_family = 0;      // bFamilyType: 2 Latin text, 3 hand written, 4 decorative
  uint8_t panose_serif = 0;       // bSerifStyle of Latin text: 2 to 10 serifs, 11 to 15 none
  uint32_t code_page_range1 = 0;  // ulCodePageRange1
};

// `index` counts the faces of a collection from 0.
SfntFacts ReadSfntFacts(const std::string& path, uint32_t index);

}  // namespace kerno
