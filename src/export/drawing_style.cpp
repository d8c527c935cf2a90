#include "export/drawing_style.h"

#include <algorithm>

#include "base/number_text.h"
#include "base/text.h"
#include "export/aci.h"

namespace kerno {
namespace {

std::u16string Numbered(const std::u16string& name, size_t number) {
  std::string digits = " ";
  AppendInteger(&digits, static_cast<int64_t>(number));
  return name + Utf8ToUtf16Lossy(digits);
}

}  // namespace

DrawingLayers::DrawingLayers(const Drawing& drawing, const DrawingStyle& style)
    : rule_(style.layers), placed_(drawing.placed.size()) {
  size_t numbered = 0;
  switch (rule_) {
    case LayerRule::kOne:
      names_ = {style.layer};
      return;
    case LayerRule::kDepth:
      // In the order in which they are cut.
      names_ = {style.layer + u" inside", style.layer + u" outside"};
      return;
    case LayerRule::kGlyph:
      numbered = drawing.placed.size();
      break;
    case LayerRule::kLine:
      for (const PlacedShape& placed : drawing.placed) {
        numbered = std::max<size_t>(numbered, placed.line + 1);
      }
      break;
  }
  for (size_t i = 1; i <= numbered; ++i) names_.push_back(Numbered(style.layer, i));
}

size_t DrawingLayers::Of(const PlacedShape& placed, size_t n, const ShapePath& path) const {
  switch (rule_) {
    case LayerRule::kDepth:
      return path.depth % 2 == 1 ? 0 : 1;
    case LayerRule::kGlyph:
      return n;
    case LayerRule::kLine:
      return placed.line;
    case LayerRule::kOne:
      break;
  }
  return 0;
}

DrawingLayers::Range DrawingLayers::PlacedOn(size_t layer) const {
  if (rule_ == LayerRule::kGlyph) return {layer, layer + 1};
  return {0, placed_};
}

Color ColorOnPaper(const DrawingStyle& style) {
  constexpr int kContrast = 7;
  return style.color == kContrast ? 0 : AciToRgb(style.color);
}

double HairlineOf(LengthUnit unit) {
  return unit == LengthUnit::kInch ? 0.001 : 0.001 * kMillimetresPerInch;
}

}  // namespace kerno
