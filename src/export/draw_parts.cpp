#include "export/draw_parts.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "export/hatch.h"
#include "export/point_run.h"
#include "parts/shapes.h"

namespace kerno {
namespace {

constexpr double kPointArm = 2;  // pixels of a point's cross on either side

// The pens or the brushes of a drawing: each is made once while it is in use.
template <class Object, class Data>
class MadeObjects {
 public:
  template <class Make>
  Object* Get(const Data& data, Make make) {
    for (auto& [known, object] : objects_) {
      if (known == data) return object.get();
    }
    if (objects_.size() >= kMostKept) objects_.erase(objects_.begin());
    objects_.emplace_back(data, make(data));
    return objects_.back().second.get();
  }

 private:
  static constexpr size_t kMostKept = 64;
  std::vector<std::pair<Data, std::unique_ptr<Object>>> objects_;
};

double SignedArea(const std::vector<P2>& loop) {
  double area = 0;
  for (size_t i = 0; i < loop.size(); ++i) {
    const P2& a = loop[i];
    const P2& b = loop[i + 1 < loop.size() ? i + 1 : 0];
    area += (a.x - loop[0].x) * (b.y - loop[0].y) - (b.x - loop[0].x) * (a.y - loop[0].y);
  }
  return area;
}

Extent3 BoxOf(const std::vector<P2>& loop) {
  Extent3 box = kEmptyExtent;
  for (const P2& p : loop) Include(&box, {p.x, p.y, 0});
  return GatheredExtent(box);
}

// A circle as a polygon's sides, fine enough for a hatch.
std::vector<HatchLine> SidesOf(const HatchCircle& circle) {
  constexpr int kSides = 24;
  const auto at = [&](int i) {
    const double a = 2 * std::numbers::pi * (i % kSides) / kSides;
    return P2{circle.centre.x + circle.radius * std::cos(a),
              circle.centre.y + circle.radius * std::sin(a)};
  };
  std::vector<HatchLine> sides;
  sides.reserve(kSides);
  for (int i = 0; i < kSides; ++i) sides.push_back({at(i), at(i + 1)});
  return sides;
}

class PartsDrawer final : public ShapeSink {
 public:
  PartsDrawer(DrawingContext& dc, const Affine& fit, const DrawOptions& options,
              const PartsA& model)
      : dc_(dc),
        fit_(fit),
        model_(model),
        run_(options.detail),
        null_pen_(dc.CreatePenIndirect({.style = PenStyle::kNull})),
        pen_before_(dc.SelectPen(null_pen_.get())),
        brush_before_(dc.SelectBrush(nullptr)) {}
  ~PartsDrawer() override {
    dc_.SelectPen(pen_before_);
    dc_.SelectBrush(brush_before_);
  }
  PartsDrawer(const PartsDrawer&) = delete;
  PartsDrawer& operator=(const PartsDrawer&) = delete;

  PictureNotes Draw() {
    notes_.left_out = VisitShapes(model_, ShapeOrder::kPainting, kPicturedXY, this);
    EndFaces();
    return notes_;
  }

 private:
  void BeginPart(const PartsElement& part) override {
    EndFaces();
    pen_ = PenOf(part.pen);
    brush_ = part.brush;
    SelectPen(pen_);
  }
  void BeginPool(std::span<const P3> /*pool*/) override { EndFaces(); }
  void Polyline(const Vertices& points) override;
  void Face(const Vertices& vertices) override;
  void Circle(const CircleShape& circle) override { DrawArc(circle.centre, circle.radius, 0, 360); }
  void Arc(const ArcShape& arc) override {
    DrawArc(arc.centre, arc.radius, arc.start_angle, arc.Sweep());
  }
  void PlainText(const P3& anchor, std::u16string_view text) override {
    EndFaces();
    DrawPlainText(dc_, anchor, text, pen_.color, fit_, &notes_);
  }
  void SetText(const P3& anchor, const TextLine& line, WritingDirection direction) override;
  void Points(const Vertices& points) override;

  void BeginFaces();
  void EndFaces();
  void FillPieces(FillMode mode);
  void HatchFace(const std::vector<P2>& loop);
  void DrawArc(const P3& centre, double radius, double start, double sweep) {
    EndFaces();
    dc_.DrawArc(Placed(fit_, centre), std::fabs(radius) * PixelsPerUnit(fit_), start, sweep);
  }

  PenData PenOf(const PenAttributes& pen) const {
    PenData data;
    const bool known = pen.style >= 0 && pen.style <= static_cast<int32_t>(PenStyle::kNull);
    data.style = known ? static_cast<PenStyle>(pen.style) : PenStyle::kSolid;
    data.color = static_cast<uint32_t>(pen.color) & 0xFFFFFF;
    data.width = PenLength(pen.width);
    data.pattern_length = PenLength(pen.unit_length);
    return data;
  }
  // A length of the pen in pixels; 0, the context's own, for what is no length.
  double PenLength(double length) const {
    const double pixels = std::fabs(length) * PixelsPerUnit(fit_);
    return std::isfinite(pixels) ? std::min(pixels, kMaxDevice) : 0;
  }
  void SelectPen(const PenData& data) {
    dc_.SelectPen(pens_.Get(data, [&](const PenData& d) { return dc_.CreatePenIndirect(d); }));
  }
  void SelectBrush(const BrushData& data) {
    dc_.SelectBrush(
        brushes_.Get(data, [&](const BrushData& d) { return dc_.CreateBrushIndirect(d); }));
  }
  uint32_t BrushColor() const { return static_cast<uint32_t>(brush_.color) & 0xFFFFFF; }

  DrawingContext& dc_;
  Affine fit_;
  const PartsA& model_;
  double hatch_unit_ = 0;  // 0: not asked for yet
  PenData pen_;
  BrushAttributes brush_;
  bool fills_ = false;               // between BeginFaces and EndFaces
  std::vector<DevicePoint> pieces_;  // of faces, to be filled together
  std::vector<uint32_t> piece_sizes_;
  PointRun run_;
  PictureNotes notes_;
  MadeObjects<Pen, PenData> pens_;
  MadeObjects<Brush, BrushData> brushes_;
  std::unique_ptr<Pen> null_pen_;
  Pen* pen_before_;
  Brush* brush_before_;
};

void PartsDrawer::BeginFaces() {
  if (fills_) return;
  fills_ = true;
  SelectBrush({BrushStyle::kSolid, BrushColor(), 0});
  dc_.SelectPen(null_pen_.get());
}

void PartsDrawer::EndFaces() {
  if (!fills_) return;
  fills_ = false;
  FillPieces(FillMode::kWinding);
  SelectPen(pen_);
}

void PartsDrawer::FillPieces(FillMode mode) {
  if (piece_sizes_.empty()) return;
  const FillMode before = dc_.SetFillMode(mode);
  dc_.DrawPolygons(pieces_, piece_sizes_);
  dc_.SetFillMode(before);
  pieces_.clear();
  piece_sizes_.clear();
}

// Triangles and quadrangles of a part are pieces of one shape: filled together, all turning the
// same way, they show no seams. A larger loop is a shape of its own, filled by the alternate rule.
void PartsDrawer::Face(const Vertices& vertices) {
  constexpr size_t kPiece = 4;
  const HatchKind kind = FillKindOf(brush_);
  if (kind == HatchKind::kHollow || vertices.size() < 3) return;
  BeginFaces();
  std::vector<P2> loop;
  loop.reserve(vertices.size());
  for (size_t i = 0; i < vertices.size(); ++i) loop.push_back({vertices[i].x, vertices[i].y});
  if (SignedArea(loop) < 0) std::reverse(loop.begin(), loop.end());
  if (kind == HatchKind::kFigures) {
    HatchFace(loop);
    return;
  }
  const bool is_piece = loop.size() <= kPiece;
  if (!is_piece) FillPieces(FillMode::kWinding);
  for (const P2& p : loop) pieces_.push_back(Placed(fit_, p));
  piece_sizes_.push_back(static_cast<uint32_t>(loop.size()));
  if (!is_piece) FillPieces(FillMode::kAlternate);
}

// The pattern's figures inside a face, drawn as hairlines in the brush's colour.
void PartsDrawer::HatchFace(const std::vector<P2>& loop) {
  const std::span<const std::vector<P2>> loops(&loop, 1);
  if (hatch_unit_ == 0) hatch_unit_ = HatchUnit(PictureBox(model_, nullptr));
  const HatchFigures figures = HatchOver(brush_.hatch, BoxOf(loop), hatch_unit_);
  const PenData hairline{.color = BrushColor()};
  const auto draw_clipped = [&](const HatchLine& line) {
    for (const HatchLine& piece : ClipToLoops(line, loops)) {
      const DevicePoint ends[] = {Placed(fit_, piece.from), Placed(fit_, piece.to)};
      dc_.DrawPolyline(ends);
    }
  };
  SelectPen(hairline);
  for (const HatchLine& line : figures.lines) draw_clipped(line);
  for (const HatchCircle& circle : figures.circles) {
    if (circle.filled) {
      if (!IsInside(circle.centre, loops)) continue;
      dc_.SelectPen(null_pen_.get());
      dc_.DrawCircle(Placed(fit_, circle.centre), circle.radius * PixelsPerUnit(fit_));
      SelectPen(hairline);
      continue;
    }
    for (const HatchLine& side : SidesOf(circle)) draw_clipped(side);
  }
  dc_.SelectPen(null_pen_.get());
}

void PartsDrawer::Polyline(const Vertices& points) {
  EndFaces();
  run_.Clear();
  run_.Begin();
  for (size_t i = 0; i < points.size(); ++i) run_.Add(Placed(fit_, points[i]));
  if (run_.End() >= 2) dc_.DrawPolyline(run_.points());
}

void PartsDrawer::Points(const Vertices& points) {
  EndFaces();
  for (size_t i = 0; i < points.size(); ++i) {
    const DevicePoint at = Placed(fit_, points[i]);
    const DevicePoint across[] = {{at.x - kPointArm, at.y}, {at.x + kPointArm, at.y}};
    const DevicePoint down[] = {{at.x, at.y - kPointArm}, {at.x, at.y + kPointArm}};
    dc_.DrawPolyline(across);
    dc_.DrawPolyline(down);
  }
}

void PartsDrawer::SetText(const P3& anchor, const TextLine& line, WritingDirection direction) {
  constexpr BrushStyle kStyles[] = {BrushStyle::kSolid, BrushStyle::kHollow, BrushStyle::kHatched};
  EndFaces();
  const bool hatched = brush_.style == static_cast<int32_t>(BrushStyle::kHatched);
  SelectBrush(
      {kStyles[static_cast<size_t>(FillKindOf(brush_))], BrushColor(), hatched ? brush_.hatch : 0});
  DrawTextLine(dc_, anchor, line, direction, fit_, &notes_);
}

}  // namespace

PictureNotes DrawParts(DrawingContext& dc, const PartsA& model, const Affine& fit,
                       const DrawOptions& options) {
  return PartsDrawer(dc, fit, options, model).Draw();
}

}  // namespace kerno
