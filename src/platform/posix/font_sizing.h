// Sizes and text metrics of an outline face: from the height that a program asks for to pixels per
// em, and from font units to whole logical units.
//
// Sources of the values: the tables OS/2, hhea, head, post of OpenType.
#pragma once

#include <cstdint>

#include "platform/device_context.h"
#include "platform/posix/free_type.h"

namespace kerno {

// Vertical extents and widths in font units. `em`, `ascent + descent` and `average_width` are at
// least 1, whatever stands in the tables.
struct FaceUnits {
  int64_t em = 1;
  int64_t ascent = 1;               // above the baseline, up
  int64_t descent = 0;              // below the baseline, down
  int64_t typographic_ascent = 1;   // of the em square, up
  int64_t typographic_descent = 0;  // of the em square, down
  int64_t line_height = 1;
  int64_t line_gap = 0;
  int64_t average_width = 1;
  int64_t max_width = 1;

  int64_t cell() const { return ascent + descent; }
};

FaceUnits ReadFaceUnits(FT_Face face);

// Pixels per em for a wanted height (> 0 cell, < 0 em, 0 the default 16); at least 1.
int64_t PixelsPerEm(const FaceUnits& units, int32_t height);

// Font units in whole logical units at this size, to the nearest, halves up.
int64_t ScaledUnits(int64_t value, const FaceUnits& units, int64_t pixels_per_em);

// Text metrics at this size and with the face's own proportions; the average width is at least 1,
// and tmWeight is left alone.
TextMetrics ScaleTextMetrics(const FaceUnits& units, int64_t pixels_per_em);

// Whether the face calls its characters equally wide: by the table post, or by the proportion of
// the PANOSE classification, whatever kind of face that is for. Advances need not bear it out: a
// face of Latin and Japanese letters has two widths.
bool IsFixedPitch(FT_Face face);

// The weight class of the face (100 to 1000), or `otherwise` when the face does not tell.
int32_t FaceWeight(FT_Face face, int32_t otherwise);

}  // namespace kerno
