// The paths that a writer of paths writes: layer after layer, wherever they come from. Coordinates
// are in a unit of length, y up.
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "drawing/drawing.h"
#include "export/drawing_style.h"

namespace kerno {

struct LayerPaths {
  using Visit = std::function<void(const Path& path, const P2& at)>;

  LengthUnit unit = LengthUnit::kMillimetre;
  Box2 picture;  // what the file shows: the sheet or the ink
  std::vector<DrawingLayer> layers;
  // Hands every path of a layer, and where its origin goes, to `visit`.
  std::function<void(size_t layer, const Visit& visit)> walk;
  // Whether a path that appears many times is one object each time, and lives on.
  bool are_kept = true;
};

// The drawing lives as long as what is returned.
LayerPaths PathsOf(const Drawing& drawing, const DrawingStyle& style);

}  // namespace kerno
