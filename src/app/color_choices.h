// The colours that the two colour lists of the main window offer.
#pragma once

#include <string>
#include <vector>

#include "parts/color.h"

namespace kerno {

struct ColorChoice {
  std::u16string name;
  Color color = 0;
};

// The named colours of the first list, black first.
const std::vector<ColorChoice>& NamedColors();

// The second list, which follows the first: the first list's colour itself, then 12 hues of its
// lightness and saturation round the wheel, beginning 90 degrees after its own hue. A colour
// without a hue counts as red of middle lightness and full saturation.
std::vector<ColorChoice> FollowingColors(const ColorChoice& first);

// Whether text in colour `ink` can be read on colour `paper` (contrast of at least 3 to 1 by the
// relative luminance of sRGB).
bool Contrasts(Color ink, Color paper);

// `paper` where ink can be read on it, otherwise white or near-black, whichever stands out.
Color PaperFor(Color ink, Color paper);

}  // namespace kerno
