// How a drawing for a machine stands in its file.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "drawing/drawing.h"
#include "parts/color.h"

namespace kerno {

enum class DxfVersion { kR2000, kR12 };

// What has a layer of its own.
enum class LayerRule {
  kOne,    // nothing: one layer for all
  kGlyph,  // each shape (a glyph, or glyphs that were welded), numbered from 1
  kLine,   // each line of the text, numbered from 1
  kDepth,  // outer contours and counters
};

enum class SvgLook {
  kCut,   // hairlines without a fill
  kFill,  // filled figures with open counters
};

struct DrawingStyle {
  std::u16string layer = u"Cut";  // the first word of every layer's name
  LayerRule layers = LayerRule::kOne;
  int color = 1;  // AutoCAD colour index, 1 (red) to 255
  DxfVersion dxf = DxfVersion::kR2000;
  SvgLook svg = SvgLook::kCut;
  std::optional<int64_t> moment;  // as in OutputOptions
};

// The layers of a drawing in the order of first use, and which one a path is on.
class DrawingLayers {
 public:
  DrawingLayers(const Drawing& drawing, const DrawingStyle& style);

  const std::vector<std::u16string>& names() const { return names_; }
  // The place in names() of a path of the n-th placed shape.
  size_t Of(const PlacedShape& placed, size_t n, const ShapePath& path) const;

  // The placed shapes that may have paths on a layer: from `first` to before `last`.
  struct Range {
    size_t first, last;
  };
  Range PlacedOn(size_t layer) const;

 private:
  LayerRule rule_;
  size_t placed_;
  std::vector<std::u16string> names_;
};

// Hands every path of a layer and its place to `visit`, in the drawing's order.
template <class Visit>
void ForEachPathOn(size_t layer, const DrawingLayers& layers, const Drawing& drawing, Visit visit) {
  const auto [first, last] = layers.PlacedOn(layer);
  for (size_t n = first; n < last; ++n) {
    const PlacedShape& placed = drawing.placed[n];
    for (const ShapePath& path : drawing.shapes[placed.shape]) {
      if (path.path.segments.empty() || layers.Of(placed, n, path) != layer) continue;
      visit(path.path, placed.at);
    }
  }
}

// The style's colour on white paper: index 7 is what stands out from the ground, white in CAD,
// black here.
Color ColorOnPaper(const DrawingStyle& style);

// What stands for a line without width: a thousandth of an inch, as laser drivers take it.
double HairlineOf(LengthUnit unit);

}  // namespace kerno
