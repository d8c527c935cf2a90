#include <algorithm>
#include <cmath>

#include "export/draw_parts.h"
#include "parts/shapes.h"

namespace kerno {
namespace {

// Gathers what a picture shows into one box.
class BoxGatherer final : public ShapeSink {
 public:
  explicit BoxGatherer(DeviceContext* dc) : dc_(dc) {}

  Extent3 box() const { return any_ ? box_ : Extent3{}; }

 private:
  void BeginPart(const PartsElement& part) override {
    const double width = std::fabs(part.pen.width);
    half_pen_ = kPicturedXY.Takes(width) ? width / 2 : 0;
  }
  void Polyline(const Vertices& points) override { AddAll(points); }
  void Face(const Vertices& loop) override { AddAll(loop); }
  void Points(const Vertices& points) override { AddAll(points); }
  void Circle(const CircleShape& circle) override { Add(circle.centre, std::fabs(circle.radius)); }
  void Arc(const ArcShape& arc) override { Add(arc.centre, std::fabs(arc.radius)); }
  void PlainText(const P3& anchor, std::u16string_view text) override {
    AddBox(dc_ ? PlainTextBox(*dc_, anchor, text) : Extent3{anchor, anchor});
  }
  void SetText(const P3& anchor, const TextLine& line, WritingDirection direction) override {
    AddBox(dc_ ? TextLineBox(*dc_, anchor, line, direction) : Extent3{anchor, anchor});
  }

  void AddAll(const Vertices& points) {
    for (size_t i = 0; i < points.size(); ++i) Add(points[i], 0);
  }
  // A text's ink may lie where no picture can show it.
  void AddBox(const Extent3& box) {
    for (const P3& corner : {box.min, box.max}) {
      if (kPicturedXY.Takes(corner)) Add(corner, 0);
    }
  }
  void Add(const P3& p, double reach) {
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
  VisitShapes(model, ShapeOrder::kPainting, kPicturedXY, &gatherer);
  return gatherer.box();
}

Extent3 ContoursBox(const TextContours& contours) {
  if (contours.empty()) return {};
  if (const std::optional<Box2> quick = contours.QuickBox()) {
    const Extent3 box = {{quick->min.x, quick->min.y, 0}, {quick->max.x, quick->max.y, 0}};
    if (kPicturedXY.Takes(box.min) && kPicturedXY.Takes(box.max)) return box;
  }
  Extent3 box;
  bool first = true;
  contours.EachPoint([&](const P2& p) {
    const P3 at = {p.x, p.y, 0};
    if (!kPicturedXY.Takes(at)) return;
    if (first) box = {at, at};
    first = false;
    Include(&box, at);
  });
  return box;
}

}  // namespace kerno
