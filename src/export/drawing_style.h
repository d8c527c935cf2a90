// How a drawing for a machine stands in its file.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "drawing/drawing.h"

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

 private:
  LayerRule rule_;
  std::vector<std::u16string> names_;
};

}  // namespace kerno
