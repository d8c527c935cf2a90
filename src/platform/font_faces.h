// The faces that the system has installed.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "platform/status.h"

namespace kerno {

inline constexpr uint32_t kRasterFontType = 1;    // RASTER_FONTTYPE
inline constexpr uint32_t kTrueTypeFontType = 4;  // TRUETYPE_FONTTYPE: outlines, of either kind

// What the enumeration tells of a family (ENUMLOGFONT and the font type).
struct InstalledFace {
  std::u16string name;  // family name, "@" in front for the vertical form
  uint8_t pitch_and_family = 0;
  uint8_t char_set = 1;
  uint32_t font_type = 0;  // kRasterFontType, kTrueTypeFontType or 0 (vector)
};

// One entry per family and, for faces that cover East Asian full-width characters, one for its "@"
// form, in the system's order (EnumFontFamilies). Damaged files are passed over; each is named in
// *skipped when that is given.
std::vector<InstalledFace> EnumerateFaces(std::vector<std::u16string>* skipped = nullptr);

// The names of EnumerateFaces that have outlines, the plain ones or those of the "@" forms, without
// a look into any file: damaged ones are among them.
enum class FamilyForm { kPlain, kVertical };
std::vector<std::u16string> ListFamilies(FamilyForm form);

// One installed face, as far as the system tells without a look into its file.
struct ListedFace {
  std::vector<std::u16string> families;    // in every language; the one that the system shows first
  std::vector<std::u16string> full_names;  // of the face alone: "DejaVu Sans Bold Oblique"
  std::vector<std::u16string> styles;      // in every language; the one to show first
  std::filesystem::path file;              // empty where the system does not tell
  uint32_t index = 0;                      // the font of a collection
  uint32_t instance = 0;                   // above 0: a named instance of a variable font
  bool has_outlines = false;
  bool has_vertical_form = false;
};

// In the order of their names, styles and files.
std::vector<ListedFace> ListFaces();

// Makes the faces of a font file known to this process, for its life. *names receives the families'
// names. Fails, and leaves everything as it was, for a file without a face that can be used.
Status AddFontFile(const std::filesystem::path& file, std::vector<std::u16string>* names);

// Whether a family of this name (any of its localized names, case ignored, both cut to kMaxFaceName
// units) is installed; "@" in front asks for its vertical form.
bool IsFaceInstalled(std::u16string_view name);

// Why a family of this name that is not found may be installed all the same: a font file that
// cannot be read. Ok where there is none, or where the system does not tell. Looks through the
// folders of fonts.
Status FontTrouble(std::u16string_view name);

}  // namespace kerno
