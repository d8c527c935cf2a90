// Glyphs of an "@" face that the system turns but leaves lying at the pen.
//
// Such a glyph is turned by 90 degrees counter-clockwise and stands in the box that its metrics
// give. Not every system moves the outline there: Wine answers the right metrics and an outline
// turned about the pen, so that a column's characters would run into its Latin letters.
#pragma once

#include <cstdint>
#include <optional>
#include <unordered_map>

#include "platform/win32/windows_api.h"

namespace kerno {

struct OutlineShift {
  int64_t x = 0;  // 26.6
  int64_t y = 0;  // 26.6, up
};

// Asks the face at the size of its own design units, where a unit is a pixel: the metrics of a
// glyph and its outline tell there exactly how far they are apart.
class TurnedGlyphs {
 public:
  // For a font created from this description.
  explicit TurnedGlyphs(const LOGFONTW& wanted);
  ~TurnedGlyphs();
  TurnedGlyphs(const TurnedGlyphs&) = delete;
  TurnedGlyphs& operator=(const TurnedGlyphs&) = delete;

  // How far the outline is to be moved at the wanted size; nothing when it stands where its metrics
  // say. `what` and `format` as for GetGlyphOutlineW; kept for each glyph.
  const std::optional<OutlineShift>& ShiftOf(UINT what, UINT format);

 private:
  std::optional<OutlineShift> FindShift(UINT what, UINT format) const;
  int64_t PixelsPerEm(int64_t cell) const;

  HDC dc_;
  HFONT design_font_ = nullptr;
  LONG wanted_height_;
  LONG wanted_width_;
  int64_t em_ = 1;
  int64_t average_width_ = 1;
  int64_t middle_ = 0;  // typographic ascender + descender, that is twice the em square's middle
  int64_t pixels_per_em_ = 1;
  std::unordered_map<uint64_t, std::optional<OutlineShift>> shifts_;
};

// Moves every point, and makes the box of `metrics` that of the moved points.
void MoveOutline(const OutlineShift& shift, uint8_t* outline, size_t size, GLYPHMETRICS* metrics);

}  // namespace kerno
