#include "export/dxf_export.h"

#include "base/file_wait.h"
#include "base/notices.h"
#include "base/text.h"
#include "export/picture_notes.h"
#include "parts/face_triangles.h"
#include "parts/shapes.h"

namespace kerno {
namespace {

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

// Writes the shapes of a model through the writer.
class DxfDrawing final : public ShapeSink {
 public:
  DxfDrawing(const DxfOptions& options, DxfMode mode, DxfWriter* writer)
      : options_(options), dxf_(*writer), flat_(mode == DxfMode::kFlat) {}

  // How many elements were left out.
  size_t Draw(const PartsA& model) {
    return VisitShapes(model, ShapeOrder::kModel, flat_ ? kFiniteXY : kFiniteXYZ, this);
  }
  bool has_point_sets() const { return has_point_sets_; }

 private:
  void BeginPart(const PartsElement& part) override { SetStyle(part, options_, &dxf_); }

  void Polyline(const Vertices& points) override {
    for (size_t i = 1; i < points.size(); ++i) {
      flat_ ? dxf_.Line2D(points[i - 1], points[i]) : dxf_.Line3D(points[i - 1], points[i]);
    }
  }

  void Face(const Vertices& face) override {
    const Vertices loop = OpenLoop(face);
    if (loop.size() == 3) {
      dxf_.Triangle(loop[0], loop[1], loop[2]);
    } else if (loop.size() == 4) {
      dxf_.Face(loop[0], loop[1], loop[2], loop[3]);
    } else if (loop.size() > 4) {
      const auto at = [&](int32_t index) { return loop.pool[static_cast<size_t>(index)]; };
      for (const auto& [a, b, c] : FaceTriangles(loop.pool, loop.indices)) {
        dxf_.Triangle(at(a), at(b), at(c));
      }
    }
  }

  void Circle(const CircleShape& circle) override {
    flat_ ? dxf_.Circle2D(circle.centre, circle.radius)
          : dxf_.Circle3D(circle.centre, circle.radius);
  }
  void Arc(const ArcShape& shape) override {
    const DxfArc arc = {shape.centre, shape.radius, shape.start_angle, shape.end_angle};
    flat_ ? dxf_.Arc2D(arc) : dxf_.Arc3D(arc);
  }

  void PlainText(const P3& anchor, std::u16string_view text) override {
    const DxfText plain = {anchor, std::u16string(text), kDefaultTextHeight};
    flat_ ? dxf_.Text2D(plain) : dxf_.Text3D(plain);
  }
  void SetText(const P3& anchor, const TextLine& line, WritingDirection direction) override {
    DxfText text = {anchor, line.text, line.height};
    if (!(text.height > 0)) text.height = kDefaultTextHeight;
    // A width is that of an average character, half the height in the face's own proportions.
    text.width_factor = line.width / (text.height / 2);
    text.rotation = line.rotation;
    text.oblique = line.oblique;
    if (direction == WritingDirection::kVertical) {
      dxf_.VerticalText2D(text);
    } else {
      flat_ ? dxf_.Text2D(text) : dxf_.Text3D(text);
    }
  }

  void Points(const Vertices& /*points*/) override { has_point_sets_ = true; }

  const DxfOptions& options_;
  DxfWriter& dxf_;
  bool flat_;
  bool has_point_sets_ = false;
};

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
  (void)DxfDrawing(options, mode, &rehearsal).Draw(model);
  DxfWriter dxf(mode);
  dxf.SetOutputName(name);
  dxf.StreamInto(out, rehearsal);
  DxfDrawing drawing(options, mode, &dxf);
  const size_t left_out = drawing.Draw(model) + dxf.left_out();
  if (Status status = dxf.FinishInto(out); !status.ok()) return status;
  if (dxf.lost_precision()) {
    Tell(name,
         u"coordinates of more than six digits are rounded in DXF; a smaller drawing keeps its "
         u"fractions");
  }
  TellLeftOut({.left_out = left_out}, kFiniteXYZ, name);
  if (drawing.has_point_sets()) Tell(name, u"point sets have no form in DXF and are left out");
  return Status::Ok();
}

Status ExportDxf(const PartsA& model, const std::filesystem::path& file,
                 const DxfOptions& options) {
  return ReplaceWhenFree(file,
                         [&](FileReplacement* out) { return WriteDxf(model, options, file, out); });
}

}  // namespace kerno
