#include "drawing/drawing.h"

#include "drawing/measures.h"

namespace kerno {
namespace {

Box2 InkOf(const Shape& shape) {
  Box2 box;
  for (const ShapePath& path : shape) Include(&box, BoxOf(path.path));
  return box;
}

DrawingFacts FactsOf(const Shape& shape) {
  DrawingFacts facts;
  for (const ShapePath& path : shape) {
    ++(path.path.closed ? facts.closed : facts.open);
    facts.length += LengthOf(path.path);
    for (const Segment& segment : path.path.segments) {
      if (segment.kind == SegmentKind::kLine) {
        ++facts.lines;
      } else if (segment.kind == SegmentKind::kArc) {
        ++facts.arcs;
      } else {
        ++facts.curves;
      }
    }
  }
  return facts;
}

}  // namespace

Box2 InkOf(const Drawing& drawing) {
  std::vector<Box2> boxes;
  for (const Shape& shape : drawing.shapes) boxes.push_back(InkOf(shape));
  Box2 ink;
  for (const PlacedShape& placed : drawing.placed) {
    const Box2& box = boxes[placed.shape];
    if (!(box.min.x <= box.max.x)) continue;
    Include(&ink, Box2{box.min + placed.at, box.max + placed.at});
  }
  return ink;
}

Box2 PictureOf(const Drawing& drawing) {
  return drawing.sheet ? *drawing.sheet : InkOf(drawing);
}

DrawingFacts FactsOf(const Drawing& drawing) {
  std::vector<DrawingFacts> of_shapes;
  for (const Shape& shape : drawing.shapes) of_shapes.push_back(FactsOf(shape));
  DrawingFacts sum;
  for (const PlacedShape& placed : drawing.placed) {
    const DrawingFacts& facts = of_shapes[placed.shape];
    sum.closed += facts.closed;
    sum.open += facts.open;
    sum.lines += facts.lines;
    sum.arcs += facts.arcs;
    sum.curves += facts.curves;
    sum.length += facts.length;
  }
  return sum;
}

}  // namespace kerno
