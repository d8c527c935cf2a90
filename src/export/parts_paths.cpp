#include "export/parts_paths.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

#include "base/notices.h"
#include "base/text.h"
#include "drawing/measures.h"
#include "drawing/vector.h"
#include "export/drawing_style.h"
#include "export/picture_notes.h"
#include "parts/shapes.h"

namespace kerno {
namespace {

// Farther out, no file of a machine has numbers.
constexpr VertexRule kReachable = {.most = 1e9, .axes = 2};

P2 Flat(const P3& p) {
  return {p.x, p.y};
}

// The tangent of a quarter of the angle from `start` to `end`, counter-clockwise.
double BulgeOf(const P2& start, const P2& end) {
  const double cross = Cross(start, end), dot = Dot(start, end);
  const double whole = SquareRoot(cross * cross + dot * dot);
  const double tangent = cross / (whole + dot);  // of half the angle
  if (!std::isfinite(tangent) || cross == 0) return 1;
  const double secant = SquareRoot(1 + tangent * tangent);
  return cross > 0 ? (secant - 1) / tangent : -(secant + 1) / tangent;
}

class PathSink final : public ShapeSink {
 public:
  explicit PathSink(Shape* shape) : shape_(*shape) {}

 private:
  void Polyline(const Vertices& points) override {
    SplitLoops(points, [&](const Vertices& part, bool closed) { Add(part, closed); });
  }
  void Face(const Vertices& loop) override {
    const Vertices open = OpenLoop(loop);
    if (open.size() >= 3) Add(open, true);
  }
  void Circle(const CircleShape& circle) override {
    const P2 centre = Flat(circle.centre);
    const double radius = std::fabs(circle.radius);
    if (!(radius > 0 && radius <= kReachable.most)) return;
    Path& path = NewPath(centre + P2{radius, 0}, true);
    path.segments = {{SegmentKind::kArc, centre - P2{radius, 0}, {}, {}, 1},
                     {SegmentKind::kArc, path.start, {}, {}, 1}};
  }
  void Arc(const ArcShape& arc) override {
    const P2 centre = Flat(arc.centre), start = Flat(arc.start), end = Flat(arc.end);
    Path& path = NewPath(start, false);
    path.segments = {{SegmentKind::kArc, end, {}, {}, BulgeOf(start - centre, end - centre)}};
  }

  Path& NewPath(const P2& start, bool closed) {
    Path& path = shape_.emplace_back().path;
    path.start = start;
    path.closed = closed;
    return path;
  }
  void Add(const Vertices& points, bool closed) {
    Path& path = NewPath(Flat(points[0]), closed);
    for (size_t i = 1; i < points.size(); ++i) {
      path.segments.push_back({SegmentKind::kLine, Flat(points[i])});
    }
    if (closed) path.segments.push_back({SegmentKind::kLine, path.start});
  }

  Shape& shape_;
};

bool HasNoPaths(const PartsElement& part) {
  const ElementCounts counts = CountElements(part);
  return counts.texts > 0 || counts.point_sets > 0;
}

// Hands the paths of each part to `visit`; what was left out.
size_t VisitPaths(const PartsA& model, const std::function<void(const Path& path)>& visit) {
  size_t left_out = 0;
  for (const PartsElement& part : PartsView(model)) {
    Shape shape;
    PathSink sink(&shape);
    left_out += VisitShapes(part, ShapeOrder::kModel, kReachable, &sink);
    for (const ShapePath& path : shape) visit(path.path);
  }
  return left_out;
}

}  // namespace

LayerPaths PathsOfParts(const PartsA& model, PartsOrigin origin,
                        const std::filesystem::path& name) {
  LayerPaths paths;
  Box2 ink;
  const size_t left_out = VisitPaths(model, [&](const Path& path) { Include(&ink, BoxOf(path)); });
  TellLeftOut({.left_out = left_out}, kReachable, name);
  if (std::ranges::any_of(PartsView(model), HasNoPaths)) {
    CurrentNotices().Message(PathText(name) +
                             u": texts and point sets have no paths and are left out");
  }
  const bool moves = origin == PartsOrigin::kLowerLeft && ink.min.x <= ink.max.x;
  const P2 at = moves ? ink.min * -1 : P2{};
  paths.picture = {ink.min + at, ink.max + at};
  paths.layers = {{}};
  paths.layers[0].name = DrawingStyle().layer;
  paths.walk = [&model, at](size_t, const LayerPaths::Visit& visit) {
    VisitPaths(model, [&](const Path& path) { visit(path, at); });
  };
  paths.are_kept = false;
  return paths;
}

}  // namespace kerno
