// One walk over the elements of a model, for all who draw or write them: indices followed, vertices
// checked, lines joined. Coordinates are the model's, y up; angles are degrees counter-clockwise
// from the x axis, 0 up to 360.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string_view>

#include "parts/parts.h"

namespace kerno {

// Coordinates that a picture can show: finite, and small enough that boxes of them stay finite.
inline constexpr double kMaxPictured = 1e100;

// The coordinates that a consumer can take: on its axes, finite and up to a size.
struct VertexRule {
  double most = std::numeric_limits<double>::max();
  int axes = 3;  // 2: z does not matter

  bool Takes(double v) const { return v >= -most && v <= most; }  // false for not-a-number
  bool Takes(const P3& p) const { return Takes(p.x) && Takes(p.y) && (axes == 2 || Takes(p.z)); }
};
inline constexpr VertexRule kFiniteXY = {.axes = 2};
inline constexpr VertexRule kFiniteXYZ = {};
inline constexpr VertexRule kPicturedXY = {kMaxPictured, 2};
inline constexpr VertexRule kPicturedXYZ = {kMaxPictured, 3};

// The vertices of an element, in its order; all of them are in the pool.
struct Vertices {
  std::span<const P3> pool;
  std::span<const int32_t> indices;

  size_t size() const { return indices.size(); }
  const P3& operator[](size_t i) const { return pool[static_cast<size_t>(indices[i])]; }
  Vertices Part(size_t from, size_t count) const { return {pool, indices.subspan(from, count)}; }
};

// A loop without the repeated first vertex that closes it.
Vertices OpenLoop(Vertices loop);

// The closed loops and what is left of a polyline that comes back to vertices it began at: each is
// handed to `take` with whether it is closed. A closed one does not repeat its first vertex.
template <class Take>
void SplitLoops(const Vertices& points, Take take) {
  size_t first = 0;
  for (size_t i = 3; i < points.size(); ++i) {
    if (i - first < 3 || points.indices[i] != points.indices[first]) continue;
    take(points.Part(first, i - first), true);
    first = i;
  }
  if (points.size() - first > 1) take(points.Part(first, points.size() - first), false);
}

struct CircleShape {
  P3 centre;
  double radius = 0;
};

// Runs counter-clockwise from `start`.
struct ArcShape {
  P3 centre;
  double radius = 0;
  P3 start, end;
  double start_angle = 0, end_angle = 0;

  // Above 0, up to a whole turn.
  double Sweep() const {
    return end_angle > start_angle ? end_angle - start_angle : end_angle - start_angle + 360;
  }
};

// What takes the shapes. The views live as long as the call.
class ShapeSink {
 public:
  virtual ~ShapeSink() = default;

  // The shapes that follow, its child's included, have the attributes of this part.
  virtual void BeginPart(const PartsElement& /*part*/) {}
  // The shapes that follow have their vertices in this pool.
  virtual void BeginPool(std::span<const P3> /*pool*/) {}

  // Lines, each of which starts at the vertex where the one before ends, as the points that they
  // lead through: two or more. An edge is joined to nothing.
  virtual void Polyline(const Vertices& /*points*/) {}
  // The loop as the face has it, of any number of vertices, 0 included.
  virtual void Face(const Vertices& /*loop*/) {}
  virtual void Circle(const CircleShape& /*circle*/) {}
  virtual void Arc(const ArcShape& /*arc*/) {}
  virtual void PlainText(const P3& /*anchor*/, std::u16string_view /*text*/) {}
  virtual void SetText(const P3& /*anchor*/, const TextLine& /*line*/,
                       WritingDirection /*direction*/) {}
  virtual void Points(const Vertices& /*points*/) {}
};

enum class ShapeOrder {
  kModel,        // that of the arrays in the parts file
  kPainting,     // faces, lines, edges, circles, points, texts: what stands above comes later
  kFaces,        // the same, the faces alone
  kAllButFaces,  // the same, all the others
};

// Hands the shapes of the model, or of one part, to the sink, part after part, each followed by its
// child. An element with a vertex that is missing or that the rule does not take is left out; of a
// set of points, such a point. How many were left out.
size_t VisitShapes(const PartsA& model, ShapeOrder order, const VertexRule& rule, ShapeSink* sink);
size_t VisitShapes(const PartsElement& part, ShapeOrder order, const VertexRule& rule,
                   ShapeSink* sink);

// How many elements a part holds, its child's included, whether or not they can be shown.
struct ElementCounts {
  size_t outlines = 0;  // lines, edges, circles, arcs
  size_t faces = 0;
  size_t texts = 0;
  size_t point_sets = 0;
};
ElementCounts CountElements(const Parts& part);

}  // namespace kerno
