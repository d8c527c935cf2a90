// What a font's tables tell of it beside its outlines.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/font_data.h"
#include "platform/font_families.h"
#include "platform/status.h"

namespace kerno {

struct FontAxis {
  std::string tag;      // "wght"
  std::u16string name;  // "Weight"
  double least = 0, usual = 0, most = 0;
  bool hidden = false;  // not for users, says the font
};

// What the font's maker lets a document do with it (fsType of the table "OS/2").
enum class Embedding {
  kInstallable,   // 0: whatever is wanted
  kEditable,      // 8: embedded in documents that may be changed
  kPreviewPrint,  // 4: embedded in documents that are looked at and printed
  kRestricted,    // 2: nothing without the maker's word
};

struct FontDetails {
  std::vector<FontAxis> axes;
  std::vector<std::string> scripts;   // ISO 15924, "Latn"; see kScriptLeast
  std::vector<std::string> features;  // OpenType tags, each once, in order
  Embedding embedding = Embedding::kInstallable;
};

// A script counts as covered from this many of its characters on: a few Greek letters stand in many
// a font as signs of mathematics.
inline constexpr uint32_t kScriptLeast = 16;

// Fails for bytes that hold no font.
[[nodiscard]] Status ReadFontDetails(const FontData& data, FontDetails* details);

// Whether the font's maker lets nobody take its outlines along without being asked: fsType is
// restricted (and nothing milder), or permits bitmaps alone (0x0200). That no part of the font may
// be taken without the rest (0x0100) is said of fonts in documents, not of a drawing.
bool ForbidsOutlines(const FontData& data);

// The axes alone, and where the face lies on each: its instance, and the variations of its data.
[[nodiscard]] Status ReadAxes(const FontData& data, std::vector<FontAxis>* axes,
                              std::vector<double>* places);

// The characters that the font has glyphs for.
[[nodiscard]] Status ReadCharacters(const FontData& data, CharacterSet* characters);

}  // namespace kerno
