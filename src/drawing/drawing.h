// A drawing that goes to a machine as it is: closed paths in a unit of length, in the order in
// which they are cut. What appears many times is kept once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "drawing/path.h"
#include "drawing/vector.h"

namespace kerno {

enum class LengthUnit { kMillimetre, kInch };

inline constexpr double kMillimetresPerInch = 25.4;

// A path of a shape, and how many contours of its shape lie around it: outer contours have an even
// number, counters an odd one.
struct ShapePath {
  Path path;
  uint32_t depth = 0;

  bool operator==(const ShapePath&) const = default;
};

// Paths that are cut together, in their order: the outline of a glyph, or of glyphs that were
// welded. Coordinates are in the drawing's unit, y up, about the shape's own origin.
using Shape = std::vector<ShapePath>;

// What a shape is there for, in the order in which the machine takes them.
enum class ShapeRole : uint8_t {
  kMark,    // a register mark of a sheet
  kNumber,  // the number of a sign, to be engraved
  kText,    // the text itself
  kFrame,   // what is cut around a sign
};

// A shape at its place.
struct PlacedShape {
  uint32_t shape = 0;
  P2 at;              // where the shape's origin goes
  uint32_t line = 0;  // the line of the text that it belongs to
  ShapeRole role = ShapeRole::kText;
};

struct Drawing {
  LengthUnit unit = LengthUnit::kMillimetre;
  std::vector<Shape> shapes;
  std::vector<PlacedShape> placed;
  bool strokes = false;       // lines to follow, closed or not: never filled
  std::optional<Box2> sheet;  // the material, where the drawing lies on a sheet of a given size
};

// The box of everything that is drawn; empty for a drawing without paths.
Box2 InkOf(const Drawing& drawing);
// What a picture of the drawing shows: the sheet, or the ink where there is none.
Box2 PictureOf(const Drawing& drawing);

// What a drawing consists of.
struct DrawingFacts {
  size_t closed = 0, open = 0;  // paths
  size_t lines = 0, arcs = 0, curves = 0;
  double length = 0;  // of all paths together, in the drawing's unit
};
DrawingFacts FactsOf(const Drawing& drawing);

}  // namespace kerno
