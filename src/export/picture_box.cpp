#include <algorithm>
#include <cmath>

#include "export/draw_parts.h"
#include "parts/element_access.h"

namespace kerno {
namespace {

// Gathers what a picture shows into one box.
class BoxGatherer {
 public:
  explicit BoxGatherer(DeviceContext* dc) : dc_(dc) {}

  void Add(const PartsElement& part) {
    const double width = std::fabs(part.pen.width);
    half_pen_ = IsPictured(width) ? width / 2 : 0;
    AddGeometry(part);
  }
  Extent3 box() const { return any_ ? box_ : Extent3{}; }

 private:
  void AddGeometry(const Parts& part) {
    for (const LineItem& line : part.lines.items) {
      AddVertex(part, line.start);
      AddVertex(part, line.end);
    }
    for (const FaceA& array : part.faces) {
      for (const FaceItem& face : array.items) AddVertices(part, face.vertices);
    }
    for (const EdgeItem& edge : part.edges.items) {
      AddVertex(part, edge.values[0]);
      AddVertex(part, edge.values[1]);
    }
    for (const CircleItem& circle : part.circles.items) {
      const P3* centre = VertexAt(part, circle.centre);
      if (centre && IsPictured(circle.radius)) AddPoint(*centre, std::fabs(circle.radius));
    }
    for (const PointA* array : {&part.point_sets, &part.more_point_sets}) {
      for (const PointSet& set : array->items) AddVertices(part, set.vertices);
    }
    for (const TextA* array : {&part.texts, &part.more_texts}) {
      for (const TextItem& item : array->items) {
        AddText(part, item.anchor, [&](const P3& at) { return TextItemBox(*dc_, at, item); });
      }
    }
    AddLines(part, part.horizontal_texts, WritingDirection::kHorizontal);
    AddLines(part, part.vertical_texts, WritingDirection::kVertical);
    if (part.child) AddGeometry(*part.child);
  }

  void AddLines(const Parts& part, const ElementArray<TextLine>& lines,
                WritingDirection direction) {
    for (const TextLine& line : lines.items) {
      AddText(part, line.anchor,
              [&](const P3& at) { return TextLineBox(*dc_, at, line, direction); });
    }
  }
  template <class Measure>
  void AddText(const Parts& part, int32_t index, Measure measure) {
    const P3* anchor = VertexAt(part, index);
    if (!anchor || !IsPictured(*anchor)) return;
    const Extent3 box = dc_ ? measure(*anchor) : Extent3{*anchor, *anchor};
    AddPoint(box.min, 0);
    AddPoint(box.max, 0);
  }
  void AddVertices(const Parts& part, const std::vector<int32_t>& indices) {
    for (int32_t index : indices) AddVertex(part, index);
  }
  void AddVertex(const Parts& part, int32_t index) {
    if (const P3* p = VertexAt(part, index)) AddPoint(*p, 0);
  }
  void AddPoint(const P3& p, double reach) {
    if (!IsPictured(p)) return;
    const double around = reach + half_pen_;
    const P3 low = {p.x - around, p.y - around, 0};
    const P3 high = {p.x + around, p.y + around, 0};
    if (!any_) box_ = {low, low};
    any_ = true;
    Include(&box_, low);
    Include(&box_, high);
  }

  DeviceContext* dc_;
  double half_pen_ = 0;
  Extent3 box_;
  bool any_ = false;
};

}  // namespace

Extent3 PictureBox(const PartsA& model, DeviceContext* dc) {
  BoxGatherer gatherer(dc);
  for (const PartsElement& part : model.parts) gatherer.Add(part);
  return gatherer.box();
}

Extent3 ContoursBox(const GlyphContours& contours) {
  Extent3 box;
  bool first = true;
  for (const P2& p : contours.points) {
    if (!IsPictured(p.x) || !IsPictured(p.y)) continue;
    const P3 at = {p.x, p.y, 0};
    if (first) box = {at, at};
    first = false;
    Include(&box, at);
  }
  return box;
}

}  // namespace kerno
