// Which installed face a user's face name means.
#pragma once

#include <string>
#include <string_view>

#include "outline/typesetter.h"

namespace kerno {

struct FaceChoice {
  FaceForm face;
  bool installed = false;  // otherwise what and why tell the user, the nearest names included
  std::u16string what;
  std::u16string why;
};

// An empty name means the system's own choice: the stock face, or the first face with a vertical
// form.
FaceChoice ChooseFace(const FaceForm& wanted);

// Whether `used`, a name of the system's, is the face that was asked for and no substitute:
// `wanted` is empty, or names an installed face.
bool IsNameOf(const FaceForm& wanted, std::u16string_view used);

}  // namespace kerno
