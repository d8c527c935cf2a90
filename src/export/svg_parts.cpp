#include "export/svg_parts.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "base/dump_log.h"
#include "base/number_text.h"
#include "export/hatch.h"
#include "parts/shapes.h"

namespace kerno {
namespace {

constexpr double kPointArm = 2;  // hairlines of a point's cross on either side

class SvgFaces final : public ShapeSink {
 public:
  SvgFaces(const BrushAttributes& brush, SvgCanvas* canvas) : brush_(brush), canvas_(*canvas) {}

 private:
  void Face(const Vertices& face) override {
    const Vertices loop = OpenLoop(face);
    if (FillKindOf(brush_) == HatchKind::kFigures) {
      Hatch(loop);
    } else if (loop.size() >= 3) {
      canvas_.shapes.Points("polygon", loop);
    }
  }
  void Hatch(const Vertices& loop);

  const BrushAttributes& brush_;
  SvgCanvas& canvas_;
};

void SvgFaces::Hatch(const Vertices& loop) {
  if (loop.size() == 0) {
    DumpText(u"SvgOut", u"SvgOut::DrawHatch\tpoints.GetCount()==0");
    return;
  }
  Extent3 box = {loop[0], loop[0]};
  for (size_t i = 0; i < loop.size(); ++i) Include(&box, loop[i]);
  std::string id = "Clip-Path-";
  AppendInteger(&id, ++canvas_.clip_paths);
  canvas_.xml.Begin("clipPath");
  canvas_.xml.Attribute("id", std::string_view(id));
  canvas_.xml.Attribute("clip-rule", std::string_view("evenodd"));
  canvas_.shapes.Points("polygon", loop);
  canvas_.xml.End();

  canvas_.xml.Begin("g");
  canvas_.xml.Attribute("clip-path", std::string_view("url(#" + id + ")"));
  const HatchFigures figures = HatchOver(brush_.hatch, box, canvas_.hatch_unit);
  for (const HatchLine& line : figures.lines) canvas_.shapes.Line(line.from, line.to);
  for (const bool filled : {false, true}) {
    if (std::ranges::none_of(figures.circles,
                             [&](const HatchCircle& c) { return c.filled == filled; }))
      continue;
    if (filled) {
      canvas_.xml.Begin("g");
      canvas_.xml.Attribute("fill", std::string_view(SvgColor(static_cast<Color>(brush_.color))));
      canvas_.xml.Attribute("stroke", std::string_view("none"));
    }
    for (const HatchCircle& circle : figures.circles) {
      if (circle.filled == filled) canvas_.shapes.Circle(circle.centre, circle.radius);
    }
    if (filled) canvas_.xml.End();
  }
  canvas_.xml.End();
}

class SvgOutlines final : public ShapeSink {
 public:
  SvgOutlines(const PartsElement& part, SvgCanvas* canvas)
      : shapes_(canvas->shapes),
        arm_(kPointArm * canvas->hairline),
        pen_color_(SvgColor(static_cast<Color>(part.pen.color))),
        text_fill_(FillKindOf(part.brush) == HatchKind::kHollow
                       ? "none"
                       : SvgColor(static_cast<Color>(part.brush.color))) {}

 private:
  // A polygon where the lines come back to their first vertex, from which others may go on.
  void Polyline(const Vertices& points) override {
    SplitLoops(points, [&](const Vertices& part, bool closed) {
      if (part.size() == 2) {
        shapes_.Line({part[0].x, part[0].y}, {part[1].x, part[1].y});
      } else {
        shapes_.Points(closed ? "polygon" : "polyline", part);
      }
    });
  }
  void Circle(const CircleShape& circle) override {
    shapes_.Circle({circle.centre.x, circle.centre.y}, std::fabs(circle.radius));
  }
  void Arc(const ArcShape& arc) override { shapes_.Arc(arc); }
  void Points(const Vertices& points) override {
    for (size_t i = 0; i < points.size(); ++i) {
      const P3& p = points[i];
      shapes_.Line({p.x - arm_, p.y}, {p.x + arm_, p.y});
      shapes_.Line({p.x, p.y - arm_}, {p.x, p.y + arm_});
    }
  }
  void PlainText(const P3& anchor, std::u16string_view text) override {
    TextLine line;
    line.text = text;
    shapes_.Text(anchor, line, WritingDirection::kHorizontal, pen_color_, "none");
  }
  void SetText(const P3& anchor, const TextLine& line, WritingDirection direction) override {
    shapes_.Text(anchor, line, direction, text_fill_, "");
  }

  SvgElements& shapes_;
  double arm_;
  std::string pen_color_;
  std::string text_fill_;
};

}  // namespace

void WriteSvgFaces(const PartsElement& part, SvgCanvas* canvas) {
  SvgFaces sink(part.brush, canvas);
  canvas->left_out += VisitShapes(part, ShapeOrder::kFaces, kPicturedXY, &sink);
}

void WriteSvgOutlines(const PartsElement& part, SvgCanvas* canvas) {
  SvgOutlines sink(part, canvas);
  canvas->left_out += VisitShapes(part, ShapeOrder::kAllButFaces, kPicturedXY, &sink);
}

}  // namespace kerno
