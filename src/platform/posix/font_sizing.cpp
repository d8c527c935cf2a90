#include "platform/posix/font_sizing.h"

#include <algorithm>
#include <cstdlib>

#include FT_TRUETYPE_TABLES_H
#include FT_ADVANCES_H

namespace kerno {
namespace {

constexpr int32_t kDefaultHeight = 16;

const TT_OS2* Os2Table(FT_Face face) {
  const auto* os2 = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
  return os2 != nullptr && os2->version != 0xFFFF ? os2 : nullptr;  // FFFF: the table is missing
}

int64_t WidthOfX(FT_Face face) {
  FT_Fixed advance = 0;
  const FT_UInt glyph = FT_Get_Char_Index(face, 'x');
  return FT_Get_Advance(face, glyph, FT_LOAD_NO_SCALE, &advance) == 0 ? advance : 0;
}

// Division of a non-negative number, rounded to the nearest whole number, halves up.
int64_t DivideRounded(int64_t dividend, int64_t divisor) {
  return (2 * dividend + divisor) / (2 * divisor);
}

}  // namespace

FaceUnits ReadFaceUnits(FT_Face face) {
  FaceUnits units;
  units.em = std::max<int64_t>(face->units_per_EM, 1);
  units.ascent = face->ascender;
  units.descent = -static_cast<int64_t>(face->descender);
  units.line_height = units.cell();
  units.line_gap = face->height - units.line_height;
  units.max_width = face->bbox.xMax - face->bbox.xMin;
  units.average_width = 0;
  if (const auto* hhea = static_cast<const TT_HoriHeader*>(FT_Get_Sfnt_Table(face, FT_SFNT_HHEA))) {
    units.ascent = hhea->Ascender;
    units.descent = -static_cast<int64_t>(hhea->Descender);
    units.line_height = units.cell();
    units.line_gap = hhea->Line_Gap;
  }
  units.typographic_ascent = units.ascent;
  units.typographic_descent = units.descent;
  if (const TT_OS2* os2 = Os2Table(face)) {
    if (os2->usWinAscent != 0 || os2->usWinDescent != 0) {
      units.ascent = os2->usWinAscent;
      units.descent = os2->usWinDescent;
    }
    units.average_width = os2->xAvgCharWidth;
    units.typographic_ascent = os2->sTypoAscender;
    units.typographic_descent = -static_cast<int64_t>(os2->sTypoDescender);
  }
  if (units.cell() <= 0) {
    units.ascent = units.em;
    units.descent = 0;
  }
  if (units.average_width <= 0) {
    units.average_width = std::max<int64_t>(WidthOfX(face), 1);
  }
  return units;
}

int64_t PixelsPerEm(const FaceUnits& units, int32_t height) {
  if (height < 0) {
    return -static_cast<int64_t>(height);
  }
  const int64_t cell = height == 0 ? kDefaultHeight : height;
  int64_t pixels = DivideRounded(cell * units.em, units.cell());
  if (DivideRounded(pixels * units.cell(), units.em) > cell) {
    --pixels;
  }
  return std::max<int64_t>(pixels, 1);
}

int64_t ScaledUnits(int64_t value, const FaceUnits& units, int64_t pixels_per_em) {
  const int64_t scale = DivideRounded(65536 * pixels_per_em, units.em);
  return (value * scale + 32768) >> 16;
}

TextMetrics ScaleTextMetrics(const FaceUnits& units, int64_t pixels_per_em) {
  const auto pixels = [&](int64_t value) {
    return static_cast<int32_t>(ScaledUnits(value, units, pixels_per_em));
  };
  TextMetrics metrics;
  metrics.tmAscent = pixels(units.ascent);
  metrics.tmDescent = pixels(units.descent);
  metrics.tmHeight = metrics.tmAscent + metrics.tmDescent;
  metrics.tmInternalLeading = pixels(units.cell() - units.em);
  metrics.tmExternalLeading =
      std::max(0, pixels(units.line_gap - (units.cell() - units.line_height)));
  metrics.tmAveCharWidth = std::max(pixels(units.average_width), 1);
  metrics.tmMaxCharWidth = pixels(units.max_width);
  return metrics;
}

bool IsFixedPitch(FT_Face face) {
  constexpr size_t kProportion = 3;
  constexpr FT_Byte kMonospaced = 9;
  const TT_OS2* os2 = Os2Table(face);
  return FT_IS_FIXED_WIDTH(face) || (os2 != nullptr && os2->panose[kProportion] == kMonospaced);
}

int32_t FaceWeight(FT_Face face, int32_t otherwise) {
  const TT_OS2* os2 = Os2Table(face);
  if (os2 == nullptr || os2->usWeightClass == 0 || os2->usWeightClass > 1000) {
    return otherwise;
  }
  // Some old faces count the weight from 1 to 9.
  return os2->usWeightClass < 10 ? os2->usWeightClass * 100 : os2->usWeightClass;
}

}  // namespace kerno
