// A font that was chosen and sized: its text metrics and the native outlines of its characters,
// kept for its lifetime. Drawing surfaces take glyphs from here too.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/device_context.h"
#include "platform/posix/font_sizing.h"
#include "platform/posix/free_type.h"
#include "platform/posix/native_outline.h"
#include "platform/posix/vertical_forms.h"

namespace kerno {

// One character, as the rasteriser gives it.
struct NativeGlyph {
  bool has_outline = false;        // false: GetGlyphOutline fails; only the advance holds
  int32_t advance = 0;             // whole logical units; a raster face has one too
  GlyphMetrics metrics;            // zero without outline
  std::vector<std::byte> outline;  // native form, y up; empty for a blank
};

// What the font mapper settled on.
struct FontChoice {
  std::string path;
  int index = 0;
  std::u16string name;        // FaceName
  int32_t face_weight = 400;  // of the face, when its file does not tell
  bool embolden = false;      // stands in for a bold that the family lacks
  bool vertical = false;
};

// How far a turned glyph is moved, in 26.6.
struct CellShift {
  int64_t x = 0;
  int64_t y = 0;
};

class RealizedFont final : public Font {
 public:
  // Opens the face and sets its size. Null when the file cannot be opened; *reading as OpenFace has
  // it.
  static std::unique_ptr<RealizedFont> Create(const FontChoice& choice, int32_t height,
                                              int32_t width, Status* reading);

  const std::u16string& FaceName() const override { return choice_.name; }
  bool HasGlyph(char32_t ch) const override;

  // Null when the rasteriser refuses the size.
  const TextMetrics* metrics() const { return sized_ ? &metrics_ : nullptr; }

  // The reference holds as long as the font does.
  const NativeGlyph& Glyph(char32_t ch);

 private:
  static constexpr char32_t kFlatCharacters = 0x250;  // Latin: found without hashing

  RealizedFont(FacePtr face, const FontChoice& choice);

  void SetOutlineSize(int32_t height, int32_t width);
  void SetStrikeSize(int32_t height);
  FT_UInt GlyphIndex(char32_t ch) const;
  NativeGlyph LoadRaster(char32_t ch) const;
  NativeGlyph LoadOutline(char32_t ch);
  CellShift ShiftOfTurned(FT_UInt glyph) const;
  void Embolden(FT_GlyphSlot slot) const;
  // How much wider, in pixels, each glyph counts.
  int32_t EmboldenedWidth() const { return choice_.embolden ? 1 : 0; }
  int64_t Advance(int64_t hinted) const;
  int64_t ScaleX(int64_t x) const;
  Outline TakeOutline(const FT_Outline& source) const;
  GlyphMetrics GridFittedBox(const FT_Glyph_Metrics& fitted) const;

  FontChoice choice_;
  FacePtr face_;
  bool sized_ = false;
  FaceUnits units_;
  bool fixed_pitch_;
  int64_t pixels_per_em_ = 0;
  int64_t width_ratio_ = 0x10000;  // 16.16
  TextMetrics metrics_;
  VerticalForms vertical_forms_;
  std::array<std::unique_ptr<NativeGlyph>, kFlatCharacters> flat_;
  std::unordered_map<char32_t, std::unique_ptr<NativeGlyph>> others_;
};

}  // namespace kerno
