#include "export/dxf_export.h"

#include <cmath>
#include <vector>

#include "base/file_wait.h"
#include "base/notices.h"
#include "base/text.h"
#include "parts/element_access.h"
#include "parts/face_triangles.h"

namespace kerno {
namespace {

// Writes the elements of one part after another through the writer.
class DxfDrawing {
 public:
  DxfDrawing(DxfWriter* writer, DxfMode mode) : dxf_(*writer), flat_(mode == DxfMode::kFlat) {}

  void Part(const Parts& part) {
    for (const TextItem& text : part.texts.items) PlainText(part, text);
    for (const LineItem& line : part.lines.items) Line(part, line.start, line.end);
    for (const CircleItem& circle : part.circles.items) Circle(part, circle);
    for (const FaceA& faces : part.faces) {
      for (const FaceItem& face : faces.items) Face(part, face);
    }
    for (const EdgeItem& edge : part.edges.items) Line(part, edge.values[0], edge.values[1]);
    for (const TextItem& text : part.more_texts.items) PlainText(part, text);
    for (const TextLine& text : part.horizontal_texts.items) SetText(part, text, false);
    for (const TextLine& text : part.vertical_texts.items) SetText(part, text, true);
    if (part.child) Part(*part.child);
    point_sets_ += part.point_sets.items.size() + part.more_point_sets.items.size();
  }

  size_t point_sets() const { return point_sets_; }

 private:
  void Line(const Parts& part, int32_t start, int32_t end) {
    const P3* a = VertexAt(part, start);
    const P3* b = VertexAt(part, end);
    if (!a || !b) return;
    if (flat_) {
      dxf_.Line2D(*a, *b);
    } else {
      dxf_.Line3D(*a, *b);
    }
  }

  void Circle(const Parts& part, const CircleItem& circle) {
    const CircleShape shape = ShapeOf(part, circle);
    if (!shape.centre) return;
    if (shape.start) {
      const DxfArc arc = {*shape.centre, circle.radius,
                          DirectionDegrees(*shape.centre, *shape.start),
                          DirectionDegrees(*shape.centre, *shape.end)};
      flat_ ? dxf_.Arc2D(arc) : dxf_.Arc3D(arc);
    } else {
      flat_ ? dxf_.Circle2D(*shape.centre, circle.radius)
            : dxf_.Circle3D(*shape.centre, circle.radius);
    }
  }

  void Face(const Parts& part, const FaceItem& face) {
    const std::vector<int32_t> loop = OpenLoop(part, face);
    const auto at = [&](int32_t index) -> const P3& { return *VertexAt(part, index); };
    if (loop.size() == 3) {
      dxf_.Triangle(at(loop[0]), at(loop[1]), at(loop[2]));
    } else if (loop.size() == 4) {
      dxf_.Face(at(loop[0]), at(loop[1]), at(loop[2]), at(loop[3]));
    } else if (loop.size() > 4) {
      for (const auto& [a, b, c] : FaceTriangles(part.vertices.points(), loop)) {
        dxf_.Triangle(at(a), at(b), at(c));
      }
    }
  }

  void PlainText(const Parts& part, const TextItem& item) {
    const P3* anchor = VertexAt(part, item.anchor);
    if (anchor) PutText({*anchor, item.text, kDefaultTextHeight}, false);
  }

  void SetText(const Parts& part, const TextLine& line, bool vertical) {
    const P3* anchor = VertexAt(part, line.anchor);
    if (!anchor) return;
    DxfText text = {*anchor, line.text, line.values[0]};
    if (!(text.height > 0)) text.height = kDefaultTextHeight;
    // A width is that of an average character, half the height in the face's own proportions.
    text.width_factor = line.values[1] / (text.height / 2);
    text.rotation = line.values[2];
    text.oblique = line.values[3];
    PutText(text, vertical);
  }

  void PutText(const DxfText& text, bool vertical) {
    if (vertical) {
      dxf_.VerticalText2D(text);
    } else if (flat_) {
      dxf_.Text2D(text);
    } else {
      dxf_.Text3D(text);
    }
  }

  DxfWriter& dxf_;
  bool flat_;
  size_t point_sets_ = 0;
};

void SetStyle(const PartsElement& part, const DxfOptions& options, DxfWriter* dxf) {
  const int16_t color = RgbToAci(static_cast<Color>(part.pen.color), options.aci);
  if (options.layers == DxfLayerRule::kName) {
    dxf->SetColor(color);
    dxf->SetLayerName(part.name);
    return;
  }
  if (part.name.empty()) {
    dxf->SetLayerNumber(color);
  } else {
    dxf->SetLayerName(part.name);
  }
  dxf->SetColor(color);
}

// Draws the whole model; how many point sets it has.
size_t Draw(const PartsA& model, const DxfOptions& options, DxfMode mode, DxfWriter* dxf) {
  DxfDrawing drawing(dxf, mode);
  for (const PartsElement& part : model.parts) {
    SetStyle(part, options, dxf);
    drawing.Part(part);
  }
  return drawing.point_sets();
}

DxfMode ModeOf(const PartsA& model) {
  const Extent3 box = model.Extent();
  return box.max.z - box.min.z == 0 ? DxfMode::kFlat : DxfMode::kSpatial;
}

void Tell(const std::filesystem::path& name, std::u16string_view what) {
  CurrentNotices().Message(PathText(name) + u": " + std::u16string(what));
}

}  // namespace

Status WriteDxf(const PartsA& model, const DxfOptions& options, const std::filesystem::path& name,
                FileReplacement* out) {
  const DxfMode mode = ModeOf(model);
  DxfWriter rehearsal(mode);
  rehearsal.Rehearse();
  (void)Draw(model, options, mode, &rehearsal);
  DxfWriter dxf(mode);
  dxf.SetOutputName(name);
  dxf.StreamInto(out, rehearsal);
  const size_t point_sets = Draw(model, options, mode, &dxf);
  if (Status status = dxf.FinishInto(out); !status.ok()) return status;
  if (dxf.lost_precision()) {
    Tell(name,
         u"coordinates of more than six digits are rounded in DXF; --scale makes the drawing "
         u"smaller");
  }
  if (dxf.left_out() > 0) {
    Tell(name, u"elements with coordinates that are not finite numbers are left out");
  }
  if (point_sets > 0) Tell(name, u"point sets have no form in DXF and are left out");
  return Status::Ok();
}

Status ExportDxf(const PartsA& model, const std::filesystem::path& file,
                 const DxfOptions& options) {
  return ReplaceWhenFree(file,
                         [&](FileReplacement* out) { return WriteDxf(model, options, file, out); });
}

}  // namespace kerno
