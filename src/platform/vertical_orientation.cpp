#include "platform/vertical_orientation.h"

#include <algorithm>
#include <iterator>

namespace kerno {
namespace {

struct OrientationRange {
  char32_t first;
  char32_t last;
  VerticalOrientation orientation;
};

constexpr OrientationRange kOrientations[] = {
#include "platform/vertical_orientation.inc"
};

}  // namespace

VerticalOrientation VerticalOrientationOf(char32_t ch) {
  const auto* range =
      std::lower_bound(std::begin(kOrientations), std::end(kOrientations), ch,
                       [](const OrientationRange& r, char32_t c) { return r.last < c; });
  return range != std::end(kOrientations) && range->first <= ch ? range->orientation
                                                                : VerticalOrientation::kRotated;
}

}  // namespace kerno
