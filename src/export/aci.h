// The colour index of drawing files (ACI, 1 to 255) and colours of 24 bits.
#pragma once

#include <cstdint>

#include "parts/color.h"

namespace kerno {

// How a colour finds its index.
enum class AciRule {
  kClassic,  // the program's own: pure colours and two greys by bands, the rest by a distance
             // whose negative differences wrap round, so that most mixed colours fall on index 1
  kNearest,  // the index whose colour is nearest by plain distance, the lowest of several
};

// The index of a colour. The classic rule takes black to 7, as white.
int16_t RgbToAci(Color color, AciRule rule = AciRule::kClassic);

// The colour of an index, as drawing programs show it; black outside 1 to 255.
Color AciToRgb(int index);

}  // namespace kerno
