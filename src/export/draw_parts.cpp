#include "export/draw_parts.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "export/hatch.h"
#include "export/point_run.h"
#include "parts/element_access.h"

namespace kerno {
namespace {

constexpr double kPointArm = 2;  // pixels of a point's cross on either side

// The pens or the brushes of a drawing, each made once.
template <class Object, class Data>
class ObjectShelf {
 public:
  template <class Make>
  Object* Get(const Data& data, Make make) {
    for (auto& [known, object] : objects_) {
      if (known == data) return object.get();
    }
    if (objects_.size() >= kShelf) objects_.erase(objects_.begin());
    objects_.emplace_back(data, make(data));
    return objects_.back().second.get();
  }

 private:
  static constexpr size_t kShelf = 64;
  std::vector<std::pair<Data, std::unique_ptr<Object>>> objects_;
};

class PartsDrawer {
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
  ~PartsDrawer() {
    dc_.SelectPen(pen_before_);
    dc_.SelectBrush(brush_before_);
  }
  PartsDrawer(const PartsDrawer&) = delete;
  PartsDrawer& operator=(const PartsDrawer&) = delete;

  void Draw(const PartsElement& part) {
    pen_ = PenOf(part.pen);
    brush_ = part.brush;
    DrawGeometry(part);
  }

  PictureNotes notes() const { return notes_; }

 private:
  void DrawGeometry(const Parts& part);
  void DrawFaces(const Parts& part);
  void HatchFace(const std::vector<P2>& loop);
  void DrawLines(const Parts& part);
  void DrawEdges(const Parts& part);
  void DrawCircles(const Parts& part);
  void DrawPoints(const Parts& part);
  void DrawTexts(const Parts& part);

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
  // The vertex of an index when the picture can show it; otherwise null, and counted.
  const P3* PicturedVertex(const Parts& part, int32_t index) {
    const P3* p = VertexAt(part, index);
    if (p && IsPictured(*p)) return p;
    ++notes_.left_out;
    return nullptr;
  }
  // The loop of a face in model coordinates, turned so that it runs counter-clockwise; empty when
  // a vertex is missing.
  std::vector<P2> LoopOf(const Parts& part, const FaceItem& face);
  void FlushLine() {
    if (run_.End() >= 2) dc_.DrawPolyline(run_.points());
    run_.Clear();
    run_.Begin();
  }

  DrawingContext& dc_;
  Affine fit_;
  const PartsA& model_;
  double hatch_unit_ = 0;  // 0: not asked for yet
  PenData pen_;
  BrushAttributes brush_;
  PointRun run_;
  PictureNotes notes_;
  ObjectShelf<Pen, PenData> pens_;
  ObjectShelf<Brush, BrushData> brushes_;
  std::unique_ptr<Pen> null_pen_;
  Pen* pen_before_;
  Brush* brush_before_;
};

void PartsDrawer::DrawGeometry(const Parts& part) {
  DrawFaces(part);
  SelectPen(pen_);
  DrawLines(part);
  DrawEdges(part);
  DrawCircles(part);
  DrawPoints(part);
  DrawTexts(part);
  if (part.child) DrawGeometry(*part.child);
}

double SignedArea(const std::vector<P2>& loop) {
  double area = 0;
  for (size_t i = 0; i < loop.size(); ++i) {
    const P2& a = loop[i];
    const P2& b = loop[i + 1 < loop.size() ? i + 1 : 0];
    area += (a.x - loop[0].x) * (b.y - loop[0].y) - (b.x - loop[0].x) * (a.y - loop[0].y);
  }
  return area;
}

std::vector<P2> PartsDrawer::LoopOf(const Parts& part, const FaceItem& face) {
  std::vector<P2> loop;
  loop.reserve(face.vertices.size());
  for (int32_t index : face.vertices) {
    const P3* p = PicturedVertex(part, index);
    if (!p) return {};
    loop.push_back({p->x, p->y});
  }
  if (SignedArea(loop) < 0) std::reverse(loop.begin(), loop.end());
  return loop;
}

// Triangles and quadrangles of a part are pieces of one shape: filled together, all turning the
// same way, they show no seams. A larger loop is a shape of its own, filled by the alternate rule.
void PartsDrawer::DrawFaces(const Parts& part) {
  constexpr size_t kPiece = 4;
  const bool hatched = brush_.style == static_cast<int32_t>(BrushStyle::kHatched);
  const HatchKind kind = hatched ? HatchKindOf(brush_.hatch) : HatchKind::kSolid;
  if (brush_.style == static_cast<int32_t>(BrushStyle::kHollow) || kind == HatchKind::kHollow) {
    return;
  }
  SelectBrush({BrushStyle::kSolid, static_cast<uint32_t>(brush_.color) & 0xFFFFFF, 0});
  dc_.SelectPen(null_pen_.get());

  std::vector<DevicePoint> pieces;
  std::vector<uint32_t> counts;
  const auto flush = [&] {
    if (counts.empty()) return;
    const FillMode before = dc_.SetFillMode(FillMode::kWinding);
    dc_.DrawPolygons(pieces, counts);
    dc_.SetFillMode(before);
    pieces.clear();
    counts.clear();
  };
  for (const FaceA& array : part.faces) {
    for (const FaceItem& face : array.items) {
      const std::vector<P2> loop = LoopOf(part, face);
      if (loop.size() < 3) continue;
      if (kind == HatchKind::kFigures) {
        HatchFace(loop);
        continue;
      }
      if (loop.size() > kPiece) flush();
      for (const P2& p : loop) pieces.push_back(Placed(fit_, p));
      counts.push_back(static_cast<uint32_t>(loop.size()));
      if (loop.size() > kPiece) {
        dc_.DrawPolygons(pieces, counts);
        pieces.clear();
        counts.clear();
      }
    }
  }
  flush();
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

// The pattern's figures inside a face, drawn as hairlines in the brush's colour.
void PartsDrawer::HatchFace(const std::vector<P2>& loop) {
  const std::span<const std::vector<P2>> loops(&loop, 1);
  if (hatch_unit_ == 0) hatch_unit_ = HatchUnit(PictureBox(model_, nullptr));
  const HatchFigures figures = HatchOver(brush_.hatch, BoxOf(loop), hatch_unit_);
  const PenData hairline{.color = static_cast<uint32_t>(brush_.color) & 0xFFFFFF};
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

void PartsDrawer::DrawLines(const Parts& part) {
  int32_t end = -1;
  bool open = false;
  run_.Clear();
  run_.Begin();
  for (const LineItem& line : part.lines.items) {
    if (open && line.start == end) {
      const P3* p = PicturedVertex(part, line.end);
      if (p) run_.Add(Placed(fit_, *p));
      if (!p) FlushLine();
      open = p != nullptr;
    } else {
      FlushLine();
      const P3* from = PicturedVertex(part, line.start);
      const P3* to = from ? PicturedVertex(part, line.end) : nullptr;
      open = to != nullptr;
      if (open) {
        run_.Add(Placed(fit_, *from));
        run_.Add(Placed(fit_, *to));
      }
    }
    end = line.end;
  }
  FlushLine();
}

void PartsDrawer::DrawEdges(const Parts& part) {
  for (const EdgeItem& edge : part.edges.items) {
    const P3* from = PicturedVertex(part, edge.values[0]);
    const P3* to = from ? PicturedVertex(part, edge.values[1]) : nullptr;
    if (!to) continue;
    const DevicePoint ends[] = {Placed(fit_, *from), Placed(fit_, *to)};
    dc_.DrawPolyline(ends);
  }
}

void PartsDrawer::DrawCircles(const Parts& part) {
  for (const CircleItem& circle : part.circles.items) {
    const CircleShape shape = ShapeOf(part, circle);
    const bool shown = shape.centre && IsPictured(*shape.centre) && IsPictured(circle.radius) &&
                       (!shape.start || (IsPictured(*shape.start) && IsPictured(*shape.end)));
    if (!shown) {
      ++notes_.left_out;
      continue;
    }
    double start = 0;
    double sweep = 360;
    if (shape.start) {
      start = DirectionDegrees(*shape.centre, *shape.start);
      sweep = DirectionDegrees(*shape.centre, *shape.end) - start;
      if (sweep <= 0) sweep += 360;
    }
    dc_.DrawArc(Placed(fit_, *shape.centre), std::fabs(circle.radius) * PixelsPerUnit(fit_), start,
                sweep);
  }
}

void PartsDrawer::DrawPoints(const Parts& part) {
  for (const PointA* array : {&part.point_sets, &part.more_point_sets}) {
    for (const PointSet& set : array->items) {
      for (int32_t index : set.vertices) {
        const P3* p = PicturedVertex(part, index);
        if (!p) continue;
        const DevicePoint at = Placed(fit_, *p);
        const DevicePoint across[] = {{at.x - kPointArm, at.y}, {at.x + kPointArm, at.y}};
        const DevicePoint down[] = {{at.x, at.y - kPointArm}, {at.x, at.y + kPointArm}};
        dc_.DrawPolyline(across);
        dc_.DrawPolyline(down);
      }
    }
  }
}

void PartsDrawer::DrawTexts(const Parts& part) {
  for (const TextA* array : {&part.texts, &part.more_texts}) {
    for (const TextItem& item : array->items) {
      if (const P3* anchor = PicturedVertex(part, item.anchor)) {
        DrawTextItem(dc_, *anchor, item, pen_.color, fit_, &notes_);
      }
    }
  }
  const auto draw_all = [&](const ElementArray<TextLine>& array, WritingDirection direction) {
    if (array.items.empty()) return;
    BrushStyle style = BrushStyle::kSolid;
    int32_t hatch = 0;
    if (brush_.style == static_cast<int32_t>(BrushStyle::kHollow)) style = BrushStyle::kHollow;
    if (brush_.style == static_cast<int32_t>(BrushStyle::kHatched)) {
      const HatchKind kind = HatchKindOf(brush_.hatch);
      if (kind == HatchKind::kHollow) style = BrushStyle::kHollow;
      if (kind == HatchKind::kFigures) style = BrushStyle::kHatched;
      hatch = brush_.hatch;
    }
    SelectBrush({style, static_cast<uint32_t>(brush_.color) & 0xFFFFFF, hatch});
    for (const TextLine& line : array.items) {
      if (const P3* anchor = PicturedVertex(part, line.anchor)) {
        DrawTextLine(dc_, *anchor, line, direction, fit_, &notes_);
      }
    }
  };
  draw_all(part.horizontal_texts, WritingDirection::kHorizontal);
  draw_all(part.vertical_texts, WritingDirection::kVertical);
}

}  // namespace

PictureNotes DrawParts(DrawingContext& dc, const PartsA& model, const Affine& fit,
                       const DrawOptions& options) {
  PartsDrawer drawer(dc, fit, options, model);
  for (const PartsElement& part : model.parts) drawer.Draw(part);
  return drawer.notes();
}

}  // namespace kerno
