#include "app/cut_painter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

#include "app/color_choices.h"
#include "drawing/flatten.h"
#include "drawing/segment.h"
#include "export/aci.h"
#include "export/fit.h"
#include "export/point_run.h"

namespace kerno {
namespace {

constexpr double kTolerance = 0.1;  // pixels from a curve to its chords
constexpr double kDetail = 0.4;     // pixels between points

// In frame pixels.
constexpr double kThickest = 1.5;  // a hairline
constexpr double kStart = 2.2;     // half a dot
constexpr double kArrowFrom = 5, kArrowTo = 11, kArrowHalf = 3;
constexpr double kLeastMarked = 16;  // a smaller path shows no start
constexpr double kNode = 2.2;        // half a square
constexpr double kControl = 1.8;
constexpr double kApart = 2;         // no two nodes are nearer
constexpr double kMostMarks = 4000;  // in a picture

// How far an arc or curve may reach past the box of its ends and control points.
double Reach(const P2& start, const Segment& segment) {
  if (segment.kind != SegmentKind::kArc) return 0;
  const double bulge = std::fabs(segment.bulge);
  const double height = bulge * Length(segment.end - start) / 2;
  return bulge > 1 ? height + 2 * RadiusOf({start, segment}) : height;
}

// At least as large as the path, and quickly found.
void IncludeRoughly(const Path& path, Box2* box) {
  Include(box, path.start);
  P2 start = path.start;
  for (const Segment& segment : path.segments) {
    const double reach = Reach(start, segment);
    const P2 out = {reach, reach};
    if (reach > 0) Include(box, Box2{start - out, start + out});
    Include(box, Box2{segment.end - out, segment.end + out});
    if (segment.kind == SegmentKind::kQuadratic || segment.kind == SegmentKind::kCubic) {
      Include(box, segment.first);
    }
    if (segment.kind == SegmentKind::kCubic) Include(box, segment.second);
    start = segment.end;
  }
}

// Whether the chord is as good as the segment, by a quick test.
bool IsFlat(const Piece& piece, double tolerance) {
  const Segment& s = piece.segment;
  if (s.kind == SegmentKind::kLine) return true;
  if (s.kind == SegmentKind::kArc) {
    return std::fabs(s.bulge) <= 1 &&
           std::fabs(s.bulge) * Length(s.end - piece.start) <= 2 * tolerance;
  }
  const P2& last = s.kind == SegmentKind::kCubic ? s.second : s.first;
  return Length(s.first - piece.start) <= tolerance && Length(s.end - last) <= tolerance;
}

// Goes over the chords of a path.
template <class Visit>
void EachChord(const Path& path, double tolerance, std::vector<ChordEnd>* room,
               const Visit& visit) {
  Piece piece = {path.start, {}};
  visit(path.start);
  for (const Segment& segment : path.segments) {
    piece.segment = segment;
    if (IsFlat(piece, tolerance)) {
      visit(segment.end);
    } else {
      room->clear();
      FlattenPiece(piece, tolerance, room);
      for (const ChordEnd& end : *room) visit(end.point);
    }
    piece.start = segment.end;
  }
}

}  // namespace

// Figures of one kind, filled together.
class CutPainter::Marks {
 public:
  explicit Marks(Color color) : color_(color) {}

  void Add(std::span<const DevicePoint> corners) {
    points_.insert(points_.end(), corners.begin(), corners.end());
    counts_.push_back(static_cast<uint32_t>(corners.size()));
  }
  void AddSquare(const DevicePoint& at, double half) {
    const DevicePoint corners[] = {{at.x - half, at.y - half},
                                   {at.x + half, at.y - half},
                                   {at.x + half, at.y + half},
                                   {at.x - half, at.y + half}};
    Add(corners);
  }
  // An octagon, which no eye tells from a circle of some pixels.
  void AddDot(const DevicePoint& at, double radius) {
    const double part = radius * 0.41421356237309503;  // tan 22.5°
    const DevicePoint corners[] = {{at.x - part, at.y - radius}, {at.x + part, at.y - radius},
                                   {at.x + radius, at.y - part}, {at.x + radius, at.y + part},
                                   {at.x + part, at.y + radius}, {at.x - part, at.y + radius},
                                   {at.x - radius, at.y + part}, {at.x - radius, at.y - part}};
    Add(corners);
  }

  // Filled, or open with the paper inside.
  void Draw(DrawingContext& dc, std::optional<Color> inside = {}) const {
    const PenStyle style = inside ? PenStyle::kSolid : PenStyle::kNull;
    const auto pen = dc.CreatePenIndirect({.style = style, .color = color_});
    const auto brush = dc.CreateBrushIndirect({.color = inside.value_or(color_)});
    Pen* const pen_before = dc.SelectPen(pen.get());
    Brush* const brush_before = dc.SelectBrush(brush.get());
    const FillMode mode_before = dc.SetFillMode(FillMode::kWinding);
    dc.DrawPolygons(points_, counts_);
    dc.SetFillMode(mode_before);
    dc.SelectBrush(brush_before);
    dc.SelectPen(pen_before);
  }

 private:
  Color color_;
  std::vector<DevicePoint> points_;
  std::vector<uint32_t> counts_;
};

namespace {

// Places of a picture that are taken by a mark.
class Taken {
 public:
  Taken(double width, double height, double apart, size_t wanted) {
    // So many that the picture holds no more than kMostMarks, if there are more.
    if (static_cast<double>(wanted) > kMostMarks) {
      apart = std::max(apart, std::sqrt(width * height / kMostMarks));
    }
    apart_ = apart;
    across_ = static_cast<size_t>(width / apart) + 1;
    down_ = static_cast<size_t>(height / apart) + 1;
    taken_.resize(across_ * down_);
  }
  // False where another one is, and outside of the picture.
  bool Take(const DevicePoint& at) {
    if (!(at.x >= 0) || !(at.y >= 0)) return false;
    const double x = at.x / apart_, y = at.y / apart_;
    if (!(x < static_cast<double>(across_)) || !(y < static_cast<double>(down_))) return false;
    const size_t cell = static_cast<size_t>(y) * across_ + static_cast<size_t>(x);
    if (taken_[cell]) return false;
    taken_[cell] = true;
    return true;
  }

 private:
  double apart_ = 1;
  size_t across_ = 0, down_ = 0;
  std::vector<bool> taken_;
};

// Selects a pen and no brush while it lives.
class LinePen {
 public:
  LinePen(DrawingContext& dc, Color color, double width)
      : dc_(dc),
        pen_(dc.CreatePenIndirect({.width = width, .color = color})),
        brush_(dc.CreateBrushIndirect({.style = BrushStyle::kHollow})),
        pen_before_(dc.SelectPen(pen_.get())),
        brush_before_(dc.SelectBrush(brush_.get())) {}
  ~LinePen() {
    dc_.SelectPen(pen_before_);
    dc_.SelectBrush(brush_before_);
  }
  LinePen(const LinePen&) = delete;
  LinePen& operator=(const LinePen&) = delete;

 private:
  DrawingContext& dc_;
  std::unique_ptr<Pen> pen_;
  std::unique_ptr<Brush> brush_;
  Pen* pen_before_;
  Brush* brush_before_;
};

}  // namespace

void CutPainter::SetDrawing(const Drawing* drawing, const DrawingStyle& style) {
  drawing_ = drawing;
  layers_.clear();
  boxes_.clear();
  scale_ = 0;
  if (!drawing) return;
  DrawingStyle plain = style;
  plain.layers = LayerRule::kOne;  // colours hang on roles alone
  layers_ = DrawingLayers(*drawing, plain).all();
  for (const Shape& shape : drawing->shapes) {
    Box2& box = boxes_.emplace_back();
    for (const ShapePath& path : shape) IncludeRoughly(path.path, &box);
  }
}

Color CutPainter::InkOf(ShapeRole role, const PreviewInks& inks) const {
  const auto found =
      std::ranges::find_if(layers_, [&](const DrawingLayer& layer) { return layer.role == role; });
  const int color = found == layers_.end() ? 1 : found->color;
  const Color written = ColorOnPaper(color);
  // What is black on paper is white on a dark screen.
  return Contrasts(written, inks.paper) ? written : LegibleOn(inks.paper, AciToRgb(color));
}

// Finds what is seen.
void CutPainter::Look(const View& view) {
  const double scale = PixelsPerUnit(view.fit);
  if (scale != scale_) {
    scale_ = scale;
    shapes_.assign(drawing_->shapes.size(), {});
    chords_.clear();
    points_.clear();
  }
  seen_.clear();
  const double around = 2 * kThickest * view.density;
  for (size_t i = 0; i < drawing_->placed.size(); ++i) {
    const PlacedShape& placed = drawing_->placed[i];
    const Box2& box = boxes_[placed.shape];
    if (!(box.min.x <= box.max.x)) continue;
    const DevicePoint at = Placed(view.fit, placed.at);
    const bool is_seen =
        at.x + box.max.x * scale > -around && at.x + box.min.x * scale < view.width + around &&
        at.y - box.min.y * scale > -around && at.y - box.max.y * scale < view.height + around;
    if (!is_seen) continue;
    seen_.push_back({i, at});
    MakeChords(placed.shape);
  }
}

void CutPainter::MakeChords(uint32_t shape) {
  ShapeChords& made = shapes_[shape];
  if (made.is_made) return;
  made = {static_cast<uint32_t>(chords_.size()), true};
  std::vector<ChordEnd> room;
  for (const ShapePath& path : drawing_->shapes[shape]) {
    PointRun run(kDetail);
    run.Begin();
    EachChord(path.path, kTolerance / scale_, &room, [&](const P2& p) {
      run.Add({p.x * scale_, -p.y * scale_});
    });
    run.End();
    Box2 box;
    for (const DevicePoint& p : run.points()) Include(&box, P2{p.x, p.y});
    chords_.push_back({.first = static_cast<uint32_t>(points_.size()),
                       .count = static_cast<uint32_t>(run.points().size()),
                       .closed = path.path.closed,
                       .size = std::max(box.Width(), box.Height())});
    points_.insert(points_.end(), run.points().begin(), run.points().end());
  }
}

void CutPainter::Paint(DrawingContext& dc, const View& view, PreviewLook look,
                       const PreviewInks& inks) {
  if (!drawing_) return;
  Look(view);
  DrawSheet(dc, view, inks);
  const bool fills = look == PreviewLook::kFilled;
  if (fills) FillShapes(dc, inks);
  for (const DrawingLayer& layer : layers_) {
    if (fills && layer.role == ShapeRole::kText && !drawing_->strokes) continue;
    LinePen pen(dc, InkOf(layer.role, inks), std::clamp(view.density, 1.0, kThickest));
    DrawLines(dc, layer.role);
  }
  DrawSpecks(dc, view, inks);
  if (look == PreviewLook::kCutLines) DrawStarts(dc, view, inks);
  if (look == PreviewLook::kNodes) DrawNodes(dc, view, inks);
}

// The paths of a shape that is seen, on their way to the context. Shape by shape: a rasteriser
// takes longer for all of them together.
void CutPainter::Gather(const Seen& seen, bool closed) {
  const uint32_t shape = drawing_->placed[seen.placed].shape;
  out_.clear();
  counts_.clear();
  for (size_t i = 0; i < drawing_->shapes[shape].size(); ++i) {
    const Chords& path = chords_[shapes_[shape].first + i];
    if (path.closed != closed) continue;
    for (const DevicePoint& p : std::span(points_).subspan(path.first, path.count)) {
      out_.push_back({p.x + seen.at.x, p.y + seen.at.y});
    }
    counts_.push_back(path.count);
  }
}

// Outer contours run against their counters, so that the winding rule leaves holes open.
void CutPainter::FillShapes(DrawingContext& dc, const PreviewInks& inks) {
  const auto pen = dc.CreatePenIndirect({.style = PenStyle::kNull});
  const auto brush = dc.CreateBrushIndirect({.color = InkOf(ShapeRole::kText, inks)});
  Pen* const pen_before = dc.SelectPen(pen.get());
  Brush* const brush_before = dc.SelectBrush(brush.get());
  const FillMode mode_before = dc.SetFillMode(FillMode::kWinding);
  for (const Seen& seen : seen_) {
    if (!IsFilled(drawing_->placed[seen.placed])) continue;
    Gather(seen, true);
    dc.DrawPolygons(out_, counts_);
  }
  dc.SetFillMode(mode_before);
  dc.SelectBrush(brush_before);
  dc.SelectPen(pen_before);
}

// With the pen that is selected.
void CutPainter::DrawLines(DrawingContext& dc, ShapeRole role) {
  for (const Seen& seen : seen_) {
    if (drawing_->placed[seen.placed].role != role) continue;
    Gather(seen, true);
    if (!counts_.empty()) dc.DrawPolygons(out_, counts_);
    Gather(seen, false);
    std::span<const DevicePoint> rest = out_;
    for (const uint32_t count : counts_) {
      dc.DrawPolyline(rest.first(count));
      rest = rest.subspan(count);
    }
  }
}

// A shape that is smaller than a pixel leaves one, so that a very large drawing is seen.
void CutPainter::DrawSpecks(DrawingContext& dc, const View& view, const PreviewInks& inks) {
  constexpr double kLeastSeen = 1, kHalf = 0.5;
  std::vector<const Seen*> small;
  for (const Seen& seen : seen_) {
    const Box2& box = boxes_[drawing_->placed[seen.placed].shape];
    if (std::max(box.Width(), box.Height()) * scale_ < kLeastSeen) small.push_back(&seen);
  }
  if (small.empty()) return;
  for (const DrawingLayer& layer : layers_) {
    Taken taken(view.width, view.height, kLeastSeen, 0);
    Marks specks(InkOf(layer.role, inks));
    for (const Seen* seen : small) {
      const PlacedShape& placed = drawing_->placed[seen->placed];
      if (placed.role != layer.role) continue;
      const P2 middle = (boxes_[placed.shape].min + boxes_[placed.shape].max) * 0.5;
      const DevicePoint at = {seen->at.x + middle.x * scale_, seen->at.y - middle.y * scale_};
      if (taken.Take(at)) specks.AddSquare(at, kHalf * view.density);
    }
    specks.Draw(dc);
  }
}

void CutPainter::DrawStarts(DrawingContext& dc, const View& view, const PreviewInks& inks) {
  const double density = view.density;
  size_t paths = 0;
  for (const Seen& seen : seen_)
    paths += drawing_->shapes[drawing_->placed[seen.placed].shape].size();
  Taken taken(view.width, view.height, 1, paths);
  Marks marks(inks.start);
  for (const Seen& seen : seen_) {
    const Shape& shape = drawing_->shapes[drawing_->placed[seen.placed].shape];
    const size_t first = shapes_[drawing_->placed[seen.placed].shape].first;
    for (size_t i = 0; i < shape.size(); ++i) {
      if (chords_[first + i].size < kLeastMarked * density) continue;
      const Path& path = shape[i].path;
      const P2& p = path.start;
      const DevicePoint at = {seen.at.x + p.x * scale_, seen.at.y - p.y * scale_};
      if (!taken.Take(at)) continue;
      const P2 up = DirectionAt({p, path.segments[0]}, 0);
      const DevicePoint way = {up.x * density, -up.y * density};
      const auto beside = [&](double along, double aside) {
        return DevicePoint{at.x + way.x * along - way.y * aside,
                           at.y + way.y * along + way.x * aside};
      };
      marks.AddDot(at, kStart * density);
      const DevicePoint arrow[] = {beside(kArrowFrom, -kArrowHalf), beside(kArrowTo, 0),
                                   beside(kArrowFrom, kArrowHalf)};
      marks.Add(arrow);
    }
  }
  marks.Draw(dc);
}

void CutPainter::DrawNodes(DrawingContext& dc, const View& view, const PreviewInks& inks) {
  const double density = view.density;
  size_t wanted = 0;
  for (const Seen& seen : seen_) {
    for (const ShapePath& path : drawing_->shapes[drawing_->placed[seen.placed].shape]) {
      wanted += path.path.segments.size() + 1;
    }
  }
  Taken taken(view.width, view.height, kApart * density, wanted);
  Marks corners(inks.corner), ends(inks.node), controls(inks.control);
  const LinePen handles(dc, inks.control, 1);
  for (const Seen& seen : seen_) {
    const auto in_picture = [&](const P2& p) {
      return DevicePoint{seen.at.x + p.x * scale_, seen.at.y - p.y * scale_};
    };
    // With lines to the nodes on either side of it, or to one alone.
    const auto control = [&](const P2& p, const P2& before, const P2& after) {
      const DevicePoint line[] = {in_picture(before), in_picture(p), in_picture(after)};
      if (!taken.Take(line[1])) return;
      dc.DrawPolyline(line);
      controls.AddDot(line[1], kControl * density);
    };
    for (const ShapePath& shape_path : drawing_->shapes[drawing_->placed[seen.placed].shape]) {
      const Path& path = shape_path.path;
      const auto node = [&](const P2& p, bool is_corner) {
        const DevicePoint at = in_picture(p);
        if (taken.Take(at)) (is_corner ? corners : ends).AddSquare(at, kNode * density);
      };
      const auto is_line = [](const Segment& s) { return s.kind == SegmentKind::kLine; };
      if (path.segments.empty()) continue;
      P2 start = path.start;
      const bool before = path.closed ? is_line(path.segments.back()) : true;
      node(start, before && is_line(path.segments[0]));
      for (size_t i = 0; i < path.segments.size(); ++i) {
        const Segment& s = path.segments[i];
        const bool last = i + 1 == path.segments.size();
        if (!last || !path.closed) {
          node(s.end, is_line(s) && (last || is_line(path.segments[i + 1])));
        }
        if (s.kind == SegmentKind::kQuadratic) {
          control(s.first, start, s.end);
        } else if (s.kind == SegmentKind::kCubic) {
          control(s.first, start, s.first);
          control(s.second, s.second, s.end);
        }
        start = s.end;
      }
    }
  }
  corners.Draw(dc);
  ends.Draw(dc, inks.paper);
  controls.Draw(dc);
}

void CutPainter::DrawSheet(DrawingContext& dc, const View& view, const PreviewInks& inks) {
  if (!drawing_->sheet) return;
  const DevicePoint low = Placed(view.fit, drawing_->sheet->min);
  const DevicePoint high = Placed(view.fit, drawing_->sheet->max);
  const LinePen pen(dc, inks.sheet, 1);
  const DevicePoint corners[] = {low, {high.x, low.y}, high, {low.x, high.y}, low};
  dc.DrawPolyline(corners);
}

}  // namespace kerno
