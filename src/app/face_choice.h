// Which installed face a user's face name means.
#pragma once

#include <string>
#include <string_view>

#include "parts/parts.h"

namespace kerno {

struct FaceChoice {
  std::u16string face;  // what to ask the device context for; "@" in front for vertical writing
  bool installed =
      false;  // otherwise what and why tell the user, the nearest installed names included
  std::u16string what;
  std::u16string why;
};

// Puts "@" in front for vertical writing unless it stands there. An empty name means the system's
// own choice: the stock face, or the first face with a vertical form.
FaceChoice ChooseFace(std::u16string_view name, WritingDirection direction);

// Whether `used` is the face that was asked for and no substitute: `wanted` is empty, or names an
// installed face.
bool IsNameOf(std::u16string_view wanted, std::u16string_view used);

}  // namespace kerno
