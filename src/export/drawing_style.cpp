#include "export/drawing_style.h"

#include <algorithm>

#include "base/number_text.h"
#include "base/text.h"
#include "export/aci.h"

namespace kerno {
namespace {

// The layers beside those of the text, in the order in which they are cut.
struct OtherLayer {
  ShapeRole role;
  std::u16string_view name;  // after the style's
  int color;
};
constexpr OtherLayer kOtherLayers[] = {
    {ShapeRole::kMark, u" marks", 7},
    {ShapeRole::kNumber, u" numbers", 3},
    {ShapeRole::kFrame, u" frame", 5},
};

std::u16string Numbered(const std::u16string& name, size_t number) {
  std::string digits = " ";
  AppendInteger(&digits, static_cast<int64_t>(number));
  return name + Utf8ToUtf16Lossy(digits);
}

}  // namespace

DrawingLayers::DrawingLayers(const Drawing& drawing, const DrawingStyle& style)
    : rule_(style.layers) {
  for (const OtherLayer& other : kOtherLayers) {
    if (other.role == ShapeRole::kFrame) AddTextLayers(drawing, style);
    const bool used = std::ranges::any_of(
        drawing.placed, [&](const PlacedShape& placed) { return placed.role == other.role; });
    first_of_role_[static_cast<size_t>(other.role)] = layers_.size();
    if (used) {
      layers_.push_back({style.layer + std::u16string(other.name), other.color, other.role});
    }
  }
  ranges_.resize(layers_.size());
  for (size_t n = 0; n < drawing.placed.size(); ++n) {
    const PlacedShape& placed = drawing.placed[n];
    const size_t first = Of(placed, n, {{}, 1});
    const size_t last = Of(placed, n, {{}, 0});
    for (size_t layer = first; layer <= last; ++layer) {
      Range& range = ranges_[layer];
      if (range.last == 0) range.first = n;
      range.last = n + 1;
    }
  }
}

void DrawingLayers::AddTextLayers(const Drawing& drawing, const DrawingStyle& style) {
  first_of_role_[static_cast<size_t>(ShapeRole::kText)] = layers_.size();
  size_t numbered = 0;
  switch (rule_) {
    case LayerRule::kOne:
      layers_.push_back({style.layer, style.color});
      return;
    case LayerRule::kDepth:
      // In the order in which they are cut.
      layers_.push_back({style.layer + u" inside", style.color});
      layers_.push_back({style.layer + u" outside", style.color});
      return;
    case LayerRule::kGlyph:
      for (const PlacedShape& placed : drawing.placed) {
        glyphs_.push_back(numbered);
        if (placed.role == ShapeRole::kText) ++numbered;
      }
      break;
    case LayerRule::kLine:
      for (const PlacedShape& placed : drawing.placed) {
        numbered = std::max<size_t>(numbered, placed.line + 1);
      }
      break;
  }
  for (size_t i = 1; i <= numbered; ++i) {
    layers_.push_back({Numbered(style.layer, i), style.color});
  }
}

std::vector<std::u16string> DrawingLayers::Names() const {
  std::vector<std::u16string> names;
  for (const DrawingLayer& layer : layers_) names.push_back(layer.name);
  return names;
}

size_t DrawingLayers::Of(const PlacedShape& placed, size_t n, const ShapePath& path) const {
  const size_t first = first_of_role_[static_cast<size_t>(placed.role)];
  if (placed.role != ShapeRole::kText) return first;
  switch (rule_) {
    case LayerRule::kDepth:
      return first + (path.depth % 2 == 1 ? 0 : 1);
    case LayerRule::kGlyph:
      return first + glyphs_[n];
    case LayerRule::kLine:
      return first + placed.line;
    case LayerRule::kOne:
      break;
  }
  return first;
}

Color ColorOnPaper(int color) {
  constexpr int kContrast = 7;
  return color == kContrast ? 0 : AciToRgb(color);
}

double HairlineOf(LengthUnit unit) {
  return unit == LengthUnit::kInch ? 0.001 : 0.001 * kMillimetresPerInch;
}

}  // namespace kerno
