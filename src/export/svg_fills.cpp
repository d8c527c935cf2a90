#include "export/svg_fills.h"

#include <algorithm>
#include <string>
#include <vector>

#include "base/dump_log.h"
#include "base/number_text.h"
#include "export/hatch.h"
#include "platform/drawing.h"

namespace kerno {
namespace {

bool HasFaces(const Parts& part) {
  return std::ranges::any_of(part.faces, [](const FaceA& a) { return !a.items.empty(); }) ||
         (part.child && HasFaces(*part.child));
}

class SvgFills {
 public:
  SvgFills(const PartsA& model, SvgCanvas* canvas) : model_(model), canvas_(*canvas) {}
  void Write();

 private:
  void Faces(const Parts& part, const PartsElement& owner);
  void Hatch(const std::vector<const P3*>& loop, const PartsElement& owner);

  const PartsA& model_;
  SvgCanvas& canvas_;
  int clip_paths_ = 0;
};

void SvgFills::Write() {
  const PartsElement* group = nullptr;  // whose brush the open group has
  const auto same_brush = [](const PartsElement& a, const PartsElement& b) {
    return a.brush.color == b.brush.color && SvgFillOf(a.brush) == SvgFillOf(b.brush);
  };
  for (const PartsElement& part : model_.parts) {
    const SvgFill fill = SvgFillOf(part.brush);
    if (fill == SvgFill::kNone || !HasFaces(part)) continue;
    if (group && !same_brush(*group, part)) {
      canvas_.xml.End();
      group = nullptr;
    }
    if (!group) {
      const std::string color = SvgColor(static_cast<Color>(part.brush.color));
      const bool solid = fill == SvgFill::kSolid;
      group = &part;
      canvas_.xml.Begin("g");
      canvas_.xml.Attribute("stroke", std::string_view(solid ? "none" : color));
      if (!solid) canvas_.shapes.Number("stroke-width", canvas_.hairline);
      canvas_.xml.Attribute("fill", std::string_view(solid ? color : "none"));
      if (solid) canvas_.xml.Attribute("fill-rule", std::string_view("evenodd"));
    }
    Faces(part, part);
  }
  if (group) canvas_.xml.End();
}

void SvgFills::Faces(const Parts& part, const PartsElement& owner) {
  const bool hatched = SvgFillOf(owner.brush) == SvgFill::kHatched;
  for (const FaceA& faces : part.faces) {
    for (const FaceItem& face : faces.items) {
      std::vector<const P3*> loop;
      bool whole = true;
      for (const int32_t index : face.vertices) {
        const P3* p = canvas_.Shown(part, index);
        whole = whole && p;
        loop.push_back(p);
      }
      while (whole && loop.size() > 1 && *loop.front() == *loop.back()) loop.pop_back();
      if (!whole) continue;
      if (hatched) {
        Hatch(loop, owner);
      } else if (loop.size() >= 3) {
        canvas_.shapes.Points("polygon", loop);
      }
    }
  }
  if (part.child) Faces(*part.child, owner);
}

void SvgFills::Hatch(const std::vector<const P3*>& loop, const PartsElement& owner) {
  if (loop.empty()) {
    DumpText(u"SvgOut", u"SvgOut::DrawHatch\tpoints.GetCount()==0");
    return;
  }
  Extent3 box = kEmptyExtent;
  for (const P3* p : loop) Include(&box, *p);
  box = GatheredExtent(box);
  std::string id = "Clip-Path-";
  AppendInteger(&id, ++clip_paths_);
  canvas_.xml.Begin("clipPath");
  canvas_.xml.Attribute("id", std::string_view(id));
  canvas_.xml.Attribute("clip-rule", std::string_view("evenodd"));
  canvas_.shapes.Points("polygon", loop);
  canvas_.xml.End();

  canvas_.xml.Begin("g");
  canvas_.xml.Attribute("clip-path", std::string_view("url(#" + id + ")"));
  const HatchFigures figures = HatchOver(owner.brush.hatch, box, canvas_.hatch_unit);
  for (const HatchLine& line : figures.lines) canvas_.shapes.Line(line.from, line.to);
  for (const bool filled : {false, true}) {
    if (std::ranges::none_of(figures.circles,
                             [&](const HatchCircle& c) { return c.filled == filled; }))
      continue;
    if (filled) {
      canvas_.xml.Begin("g");
      canvas_.xml.Attribute("fill",
                            std::string_view(SvgColor(static_cast<Color>(owner.brush.color))));
      canvas_.xml.Attribute("stroke", std::string_view("none"));
    }
    for (const HatchCircle& circle : figures.circles) {
      if (circle.filled == filled) canvas_.shapes.Circle(circle.centre, circle.radius);
    }
    if (filled) canvas_.xml.End();
  }
  canvas_.xml.End();
}

}  // namespace

SvgFill SvgFillOf(const BrushAttributes& brush) {
  if (brush.style == static_cast<int32_t>(BrushStyle::kHollow)) return SvgFill::kNone;
  if (brush.style != static_cast<int32_t>(BrushStyle::kHatched)) return SvgFill::kSolid;
  const HatchKind kind = HatchKindOf(brush.hatch);
  if (kind == HatchKind::kHollow) return SvgFill::kNone;
  return kind == HatchKind::kSolid ? SvgFill::kSolid : SvgFill::kHatched;
}

void WriteSvgFills(const PartsA& model, SvgCanvas* canvas) {
  SvgFills(model, canvas).Write();
}

}  // namespace kerno
