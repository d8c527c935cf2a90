// Which installed face a user's face name means.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "outline/typesetter.h"
#include "platform/font_data.h"

namespace kerno {

// What a device context can be asked for beside a family.
struct SystemStyle {
  int32_t weight = 400;
  bool italic = false;
  bool made_bold = false;  // by the rasteriser: the family has no bold face
};

struct FaceChoice {
  FaceForm face;
  // Of a face that was given by its full name; `face` is its family then.
  std::optional<SystemStyle> style;
  bool installed = false;  // otherwise what and why tell the user, the nearest names included
  std::u16string what;
  std::u16string why;
  bool unreadable = false;  // it is installed, but its file cannot be read
  bool in_doubt = false;    // it is not found, but a font file cannot be read
};

// FindFontData; where no face has the name, the reason goes on with the nearest names that are
// installed, a face with the measures of a well-known one that is not first. Where the face may
// stand in a font file that cannot be read, the reason names that, and the failure is another.
[[nodiscard]] Status FindFace(const FaceRequest& request, FontData* data);

// An empty name means the system's own choice: the stock face, or the first face with a vertical
// form.
FaceChoice ChooseFace(const FaceForm& wanted);

// A named style of an installed family, for a device context, which tells weights and slants apart
// but neither widths nor names. Fails with kNotFound for a style that cannot be had so; the reason
// tells the user what to do instead. An empty name becomes that of the family that is taken.
[[nodiscard]] Status ChooseStyle(std::u16string_view style, std::u16string* name,
                                 SystemStyle* chosen);

// Whether the maker of an installed face may forbid to take its outlines (ForbidsOutlines): of the
// style that a device context gives.
bool LicenceForbids(std::u16string_view face, const SystemStyle& style);

// Whether `used`, a name of the system's, is the face that was asked for and no substitute:
// `wanted` is empty, or names an installed face.
bool IsNameOf(const FaceForm& wanted, std::u16string_view used);

}  // namespace kerno
