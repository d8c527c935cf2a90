// A font of the graphics device interface, and its description in both forms.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/device_context.h"
#include "platform/win32/turned_glyphs.h"
#include "platform/win32/windows_api.h"

namespace kerno {

LOGFONTW ToSystem(const LogFont& font);
LogFont FromSystem(const LOGFONTW& font);

// What the native interface leaves out: characters outside the first plane by the font's own
// character map (format 12 of its "cmap" table).
class CharacterMap {
 public:
  // Of the font selected into `dc`.
  void Load(HDC dc);

  // The glyph of a character outside the first plane; 0 without one.
  uint32_t GlyphOf(char32_t ch) const;

 private:
  struct Group {
    uint32_t first = 0;
    uint32_t last = 0;
    uint32_t glyph = 0;
  };
  std::vector<Group> groups_;
};

class RealizedFont final : public Font {
 public:
  // Null when the system gives no font.
  static std::unique_ptr<RealizedFont> Create(const LogFont& wanted);
  ~RealizedFont() override;
  RealizedFont(const RealizedFont&) = delete;
  RealizedFont& operator=(const RealizedFont&) = delete;

  const std::u16string& FaceName() const override { return face_name_; }
  bool HasGlyph(char32_t ch) const override;

  // The glyph of a character outside the first plane, or 0.
  uint32_t FarGlyph(char32_t ch) const;

  HFONT handle() const { return font_; }

  // False when the system answers a size that it cannot make with another one.
  bool has_size() const { return has_size_; }

  // Whether glyphs may be too large for the 16 bits of the system's numbers.
  bool is_large() const { return is_large_; }

  // Null for a face without "@".
  TurnedGlyphs* turned() const { return turned_.get(); }

 private:
  RealizedFont(HFONT font, HDC dc, const LOGFONTW& description);

  HFONT font_;
  HDC dc_;  // of its own, in which the font is always selected
  bool has_size_ = true;
  bool is_large_ = false;
  std::u16string face_name_;
  std::unique_ptr<TurnedGlyphs> turned_;
  mutable std::unique_ptr<CharacterMap> far_;  // read at the first need
};

}  // namespace kerno
