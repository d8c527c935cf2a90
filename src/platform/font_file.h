// The faces of a font file, as its own tables name them.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/font_data.h"
#include "platform/font_families.h"
#include "platform/style_choice.h"

namespace kerno {

// A font of a collection, or a named instance of a variable font.
struct FontFileFace {
  uint32_t index = 0;
  uint32_t instance = 0;                   // above 0: the instance, counted from 1
  std::vector<std::u16string> families;    // in every language, the English ones first
  std::vector<FamilyName> family_names;    // the same with their languages
  std::vector<std::u16string> full_names;  // "DejaVu Sans Oblique", "DejaVuSans-Oblique"
  StyledFace style;
};

// The faces of the bytes of a font or a collection (OpenType tables, big-endian), in their order;
// none for bytes of another kind. Damaged tables leave names out.
std::vector<FontFileFace> FacesIn(std::string_view bytes);

// The families and full names in the bytes of a naming table ("name").
FontFileFace NamesIn(std::string_view table);

// Takes from a request and from the choice of a style what a font's data tells of them.
void Describe(const FaceRequest& request, std::span<const StyledFace> styles,
              const StyleChoice& choice, FontData* data);

// The failure of a family that lacks a style which cannot be made, either.
Status NoSuchStyle(std::u16string_view family, std::u16string_view style,
                   std::span<const StyledFace> styles);

// Bold and slanted letters that are to be made come from the axes of a variable font where it has
// such; the variations of the request come after them. `style` is the one asked for.
void TakeStyleFromAxes(std::u16string_view style, FontData* data);

// Fails for a font that lacks a table which text and outlines need, or ends before one does that
// they read.
[[nodiscard]] Status CheckWhole(const FontData& data);

// What FindFontData does for a request that names a file.
[[nodiscard]] Status FindInFile(const FaceRequest& request, FontData* data);

}  // namespace kerno
