#include "export/drawing_parts.h"

#include <cmath>
#include <vector>

#include "base/stop.h"
#include "drawing/flatten.h"
#include "drawing/segment.h"
#include "export/aci.h"

namespace kerno {
namespace {

class PathToParts {
 public:
  PathToParts(double tolerance, double scale, ArcForm arcs, const P2& at, PartsElement* part)
      : tolerance_(tolerance), scale_(scale), arcs_(arcs), at_(at), part_(*part) {}

  void Add(const Path& path) {
    P2 from = path.start;
    for (const Segment& segment : path.segments) {
      if (segment.kind == SegmentKind::kArc && arcs_ == ArcForm::kArcs) {
        AddArc(from, segment);
      } else if (segment.kind == SegmentKind::kLine) {
        part_.AddLine(Placed(from), Placed(segment.end));
      } else {
        AddChords(from, segment);
      }
      from = segment.end;
    }
  }

 private:
  P3 Placed(const P2& p) const { return {(p.x + at_.x) * scale_, (p.y + at_.y) * scale_, 0}; }

  // An arc of the model runs counter-clockwise.
  void AddArc(const P2& from, const Segment& segment) {
    const Piece arc = {from, segment};
    const bool forward = segment.bulge > 0;
    part_.AddCircle(Placed(CentreOf(arc)), RadiusOf(arc) * scale_, 0,
                    Placed(forward ? from : segment.end), Placed(forward ? segment.end : from));
  }

  void AddChords(const P2& from, const Segment& segment) {
    std::vector<ChordEnd> ends;
    FlattenPiece({from, segment}, tolerance_, &ends);
    P2 start = from;
    for (const ChordEnd& end : ends) {
      part_.AddLine(Placed(start), Placed(end.point));
      start = end.point;
    }
  }

  double tolerance_;
  double scale_;
  ArcForm arcs_;
  P2 at_;
  PartsElement& part_;
};

}  // namespace

PartsA PartsOf(const Drawing& drawing, const DrawingStyle& style, double tolerance, double scale,
               ArcForm arcs) {
  const DrawingLayers layers(drawing, style);
  PartsA model;
  for (size_t n = 0; n < drawing.placed.size(); ++n) {
    StopIfAsked();
    const PlacedShape& placed = drawing.placed[n];
    const std::u16string* layer = nullptr;
    for (const ShapePath& path : drawing.shapes[placed.shape]) {
      const auto& [name, index, role] = layers.all()[layers.Of(placed, n, path)];
      if (!layer || *layer != name) {
        const auto color = static_cast<int32_t>(AciToRgb(index));
        PartsElement& part = model.parts.emplace_back();
        part.name = name;
        part.pen.color = color;
        part.brush.color = color;
        layer = &name;
      }
      PathToParts(tolerance, scale, arcs, placed.at, &model.parts.back()).Add(path.path);
    }
  }
  return model;
}

}  // namespace kerno
