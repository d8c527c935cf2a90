#include "export/layer_paths.h"

#include "base/stop.h"

namespace kerno {

LayerPaths PathsOf(const Drawing& drawing, const DrawingStyle& style) {
  LayerPaths paths;
  const DrawingLayers layers(drawing, style);
  paths.unit = drawing.unit;
  paths.picture = PictureOf(drawing);
  paths.layers = layers.all();
  paths.walk = [&drawing, layers](size_t layer, const LayerPaths::Visit& visit) {
    const auto [first, last] = layers.PlacedOn(layer);
    for (size_t n = first; n < last; ++n) {
      StopIfAsked();
      const PlacedShape& placed = drawing.placed[n];
      for (const ShapePath& path : drawing.shapes[placed.shape]) {
        if (path.path.segments.empty() || layers.Of(placed, n, path) != layer) continue;
        visit(path.path, placed.at);
      }
    }
  };
  return paths;
}

}  // namespace kerno
