// A device context: fonts selected into it, their metrics and glyph outlines.
//
// Units are logical units of the device context; fixed-point numbers are 16.16, and outline
// coordinates point up (y grows upwards from the baseline), as in the native outline form of the
// desktop's graphics interface. Buffers are in the byte order of the machine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/status.h"

namespace kerno {

// Which font is wanted. Zero values leave the choice to the font mapper.
struct LogFont {
  int32_t height = 0;       // > 0 cell height, < 0 em height, 0 the default (16)
  int32_t width = 0;        // average character width; 0 keeps the face's proportions
  int32_t escapement = 0;   // tenths of a degree
  int32_t orientation = 0;  // tenths of a degree
  int32_t weight = 0;       // 400 normal, 700 bold
  uint8_t italic = 0;
  uint8_t underline = 0;
  uint8_t strike_out = 0;
  uint8_t char_set = 1;  // 1 = default
  uint8_t out_precision = 0;
  uint8_t clip_precision = 0;
  uint8_t quality = 0;
  uint8_t pitch_and_family = 0;
  std::u16string
      face_name;  // at most kMaxFaceName units count; "@" in front asks for the vertical form

  bool operator==(const LogFont&) const = default;
};

inline constexpr size_t kMaxFaceName = 31;  // UTF-16 units of a face name that the system compares

// TEXTMETRIC: all in logical units.
struct TextMetrics {
  int32_t tmHeight = 0;  // tmAscent + tmDescent
  int32_t tmAscent = 0;
  int32_t tmDescent = 0;
  int32_t tmInternalLeading = 0;
  int32_t tmExternalLeading = 0;
  int32_t tmAveCharWidth = 0;
  int32_t tmMaxCharWidth = 0;
  int32_t tmWeight = 0;
};

// GLYPHMETRICS: the black box, its upper left corner relative to the pen, and the advance.
struct GlyphMetrics {
  uint32_t gmBlackBoxX = 0;
  uint32_t gmBlackBoxY = 0;
  int32_t gmptGlyphOriginX = 0;
  int32_t gmptGlyphOriginY = 0;
  int16_t gmCellIncX = 0;
  int16_t gmCellIncY = 0;
};

// MAT2: a 2 x 2 matrix of 16.16 numbers.
struct Mat2 {
  int32_t eM11 = 0x10000;
  int32_t eM12 = 0;
  int32_t eM21 = 0;
  int32_t eM22 = 0x10000;
};

struct Extent {
  int32_t cx = 0;
  int32_t cy = 0;
};

// GGO_NATIVE: the outline as polygon headers and curve records.
inline constexpr uint32_t kGgoNative = 2;
inline constexpr uint32_t kGdiError = 0xFFFFFFFF;  // GDI_ERROR

// A realised font. Owns what the rasteriser needs, and keeps the outlines that were asked of it.
class Font {
 public:
  virtual ~Font() = default;

  // The face really used, as the system names it (a substitute's name when the wanted one is
  // missing), with "@" in front for the vertical form.
  virtual const std::u16string& FaceName() const = 0;

  // Whether a glyph stands for this character; false means that the missing-glyph box is drawn.
  virtual bool HasGlyph(char32_t ch) const = 0;

  // A place where a room above keeps what it derived from this font's outlines; it dies with the
  // font. One tenant only: outline/.
  std::shared_ptr<void> derived;
};

// One font is selected at a time; until the first selection a stock font is.
class DeviceContext {
 public:
  virtual ~DeviceContext() = default;

  // Realises a font (CreateFontIndirect). Null when the system has no face at all to give.
  virtual std::unique_ptr<Font> CreateFontIndirect(const LogFont& wanted) = 0;

  // Selects a font and returns the one selected before (null: the stock font). The caller keeps
  // ownership and destroys a font only after another one was selected.
  virtual Font* SelectFont(Font* font) = 0;
  virtual Font* SelectedFont() const = 0;

  // False when the metrics cannot be had; *metrics is then zero.
  virtual bool GetTextMetrics(TextMetrics* metrics) = 0;

  // GetGlyphOutline: with format kGgoNative, the only one, the size of the outline in bytes (0 for
  // a blank), or kGdiError. `buffer` may be null to ask for the size; otherwise it receives the
  // outline when `size` suffices. `metrics` is filled unless the call fails. A character outside
  // the first plane is one character; a surrogate half is a character without a glyph.
  virtual uint32_t GetGlyphOutline(char32_t ch, uint32_t format, GlyphMetrics* metrics,
                                   uint32_t size, void* buffer, const Mat2& matrix) = 0;

  // The extent of a string set in one line (GetTextExtentPoint32).
  virtual bool GetTextExtent(std::u16string_view text, Extent* extent) = 0;

  // The first failure to read the file of a face that fonts of this context were to be made of, for
  // which another face was taken; ok where there was none, or the system does not tell.
  virtual Status FontReading() const { return Status::Ok(); }

  // Draws text with its upper left corner at (x, y); a context without a surface records nothing.
  virtual bool TextOut(int32_t x, int32_t y, std::u16string_view text) = 0;
};

// A context that measures and outlines but has no surface to draw on.
std::unique_ptr<DeviceContext> CreateMeasuringContext();

}  // namespace kerno
