// How a drawing for a machine stands in its file.
#pragma once

#include <array>
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

struct DrawingLayer {
  std::u16string name;
  int color = 1;  // as in DrawingStyle
  ShapeRole role = ShapeRole::kText;
};

// The layers of a drawing in the order in which they are cut, and which one a path is on. What is
// no text has layers of its own after the style's name, in colours of their own.
class DrawingLayers {
 public:
  DrawingLayers(const Drawing& drawing, const DrawingStyle& style);

  const std::vector<DrawingLayer>& all() const { return layers_; }
  std::vector<std::u16string> Names() const;
  // The place in all() of a path of the n-th placed shape.
  size_t Of(const PlacedShape& placed, size_t n, const ShapePath& path) const;

  // The placed shapes that may have paths on a layer: from `first` to before `last`.
  struct Range {
    size_t first = 0, last = 0;
  };
  Range PlacedOn(size_t layer) const { return ranges_[layer]; }

 private:
  void AddTextLayers(const Drawing& drawing, const DrawingStyle& style);

  LayerRule rule_;
  std::vector<DrawingLayer> layers_;
  std::vector<Range> ranges_;
  std::array<size_t, 4> first_of_role_ = {};
  std::vector<size_t> glyphs_;  // LayerRule::kGlyph: which text shape each placed one is
};

// A colour index on white paper: 7 is what stands out from the ground, white in CAD, black here.
Color ColorOnPaper(int color);

// What stands for a line without width: a thousandth of an inch, as laser drivers take it.
double HairlineOf(LengthUnit unit);

}  // namespace kerno
