#include "export/drawing_dxf.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "base/file_wait.h"
#include "base/stop.h"
#include "base/text.h"
#include "drawing/measures.h"
#include "drawing/segment.h"
#include "export/drawing_dxf_frame.h"
#include "export/dxf_lines.h"
#include "export/fixed_number.h"

namespace kerno {
namespace {

constexpr int kBulgeDecimals = 8;
constexpr size_t kBlock = 1 << 16;

P2 Moved(const P2& p, const P2& by) {
  return {p.x + by.x, p.y + by.y};
}

bool HasCurves(const Path& path) {
  for (const Segment& segment : path.segments) {
    if (segment.kind == SegmentKind::kQuadratic || segment.kind == SegmentKind::kCubic) return true;
  }
  return false;
}

// A vertex of a polyline, wherever that stands: its point in units of the last decimal, and the
// lines that tell of the bulge after it.
struct Vertex {
  int64_t x = 0, y = 0;
  size_t bulge_length = 0;
  std::array<char, 4 + kLongestFixed + 1> bulge;
};
using Vertices = std::vector<Vertex>;

class DrawingDxf {
 public:
  DrawingDxf(const Drawing& drawing, const DrawingStyle& style, FileReplacement* out)
      : drawing_(drawing), layers_(drawing, style), out_(*out), vertices_(drawing.shapes.size()) {
    frame_.modern = style.dxf == DxfVersion::kR2000;
    frame_.unit = drawing.unit;
    frame_.decimals = drawing.unit == LengthUnit::kInch ? 8 : 6;
    frame_.box = InkOf(drawing);
    frame_.page = CodePageOf(layers_.Names());
    for (const DrawingLayer& layer : layers_.all()) {
      frame_.layers.push_back({DxfLayerText(layer.name, frame_.page), layer.color});
    }
    for (const PlacedShape& placed : drawing.placed) {
      frame_.entities += drawing.shapes[placed.shape].size();
    }
    handle_ = kFirstDxfHandle + frame_.layers.size();
  }

  Status Write() {
    lines_.Put(DxfBeforeEntities(frame_));
    for (size_t n = 0; n < drawing_.placed.size() && status_.ok(); ++n) {
      StopIfAsked();
      const PlacedShape& placed = drawing_.placed[n];
      const Shape& shape = drawing_.shapes[placed.shape];
      vertices_[placed.shape].resize(shape.size());
      for (size_t i = 0; i < shape.size(); ++i) {
        const std::string& layer = frame_.layers[layers_.Of(placed, n, shape[i])].name;
        Entity(shape[i].path, placed.at, layer, &vertices_[placed.shape][i]);
        if (lines_.text().size() >= kBlock) Flush();
      }
    }
    lines_.Put(DxfAfterEntities(frame_));
    Flush();
    return status_;
  }

 private:
  void Flush() {
    if (status_.ok()) status_ = out_.Write(lines_.text());
    lines_.text().clear();
  }

  void Entity(const Path& path, const P2& at, const std::string& layer, Vertices* vertices);
  void Head(std::string_view type, const std::string& layer);
  void Polyline(const Path& path, const P2& at, const std::string& layer, Vertices* vertices);
  Vertices VerticesOf(const Path& path) const;
  void OldPolyline(const Path& path, const P2& at, const std::string& layer);
  void Spline(const Path& path, const P2& at, const std::string& layer);

  const Drawing& drawing_;
  DrawingLayers layers_;
  DxfFrameFacts frame_;
  FileReplacement& out_;
  std::vector<std::vector<Vertices>> vertices_;  // of the paths of each shape, as they are needed
  DxfLines lines_;
  Status status_;
  uint64_t handle_ = 0;
};

void DrawingDxf::Head(std::string_view type, const std::string& layer) {
  lines_.Pair("  0", type);
  if (frame_.modern) {
    lines_.Pair("  5", DxfHex(handle_++));
    lines_.Pair("330", kDxfModelRecord);
    lines_.Pair("100", "AcDbEntity");
  }
  lines_.Pair("  8", layer);
}

void DrawingDxf::Entity(const Path& path, const P2& at, const std::string& layer,
                        Vertices* vertices) {
  if (path.segments.empty()) return;
  if (HasCurves(path)) {
    Spline(path, at, layer);
  } else if (frame_.modern) {
    Polyline(path, at, layer, vertices);
  } else {
    OldPolyline(path, at, layer);
  }
}

Vertices DrawingDxf::VerticesOf(const Path& path) const {
  Vertices vertices;
  const auto add = [&](const P2& p, double bulge) {
    Vertex& vertex = vertices.emplace_back();
    vertex.x = FixedUnits(p.x, frame_.decimals);
    vertex.y = FixedUnits(p.y, frame_.decimals);
    if (bulge == 0) return;
    std::string text = " 42\n";
    AppendFixed(&text, bulge, kBulgeDecimals);
    text.push_back('\n');
    vertex.bulge_length = text.copy(vertex.bulge.data(), vertex.bulge.size());
  };
  P2 from = path.start;
  for (const Segment& segment : path.segments) {
    add(from, segment.kind == SegmentKind::kArc ? segment.bulge : 0);
    from = segment.end;
  }
  if (!path.closed) add(from, 0);
  return vertices;
}

void DrawingDxf::Polyline(const Path& path, const P2& at, const std::string& layer,
                          Vertices* vertices) {
  if (vertices->empty()) *vertices = VerticesOf(path);
  Head("LWPOLYLINE", layer);
  lines_.Pair("100", "AcDbPolyline");
  lines_.Integer(" 90", static_cast<int64_t>(vertices->size()));
  lines_.Pair(" 70", path.closed ? "1" : "0");
  const int64_t x = FixedUnits(at.x, frame_.decimals), y = FixedUnits(at.y, frame_.decimals);
  for (const Vertex& vertex : *vertices) {
    std::array<char, 10 + 2 * kLongestFixed + sizeof vertex.bulge> text;
    char* end = std::copy_n(" 10\n", 4, text.data());
    end = PutFixedUnits(end, x + vertex.x, frame_.decimals);
    end = PutFixedUnits(std::copy_n("\n 20\n", 5, end), y + vertex.y, frame_.decimals);
    *end++ = '\n';
    end = std::copy_n(vertex.bulge.data(), vertex.bulge_length, end);
    lines_.text().append(text.data(), end);
  }
}

void DrawingDxf::OldPolyline(const Path& path, const P2& at, const std::string& layer) {
  Head("POLYLINE", layer);
  lines_.Put(" 66\n1\n 10\n0\n 20\n0\n 30\n0\n");
  lines_.Pair(" 70", path.closed ? "1" : "0");
  const auto vertex = [&](const P2& p, double bulge) {
    Head("VERTEX", layer);
    lines_.Point(Moved(p, at), frame_.decimals);
    lines_.Pair(" 30", "0");
    if (bulge != 0) lines_.Number(" 42", bulge, kBulgeDecimals);
  };
  P2 from = path.start;
  for (const Segment& segment : path.segments) {
    vertex(from, segment.kind == SegmentKind::kArc ? segment.bulge : 0);
    from = segment.end;
  }
  if (!path.closed) vertex(from, 0);
  Head("SEQEND", layer);
}

// One spline of third degree in Bézier pieces: each knot stands three times, the ends four times.
void DrawingDxf::Spline(const Path& path, const P2& at, const std::string& layer) {
  const auto pieces = static_cast<int64_t>(path.segments.size());
  Head("SPLINE", layer);
  lines_.Pair("100", "AcDbSpline");
  lines_.Put("210\n0\n220\n0\n230\n1\n");
  lines_.Pair(" 70", path.closed ? "9" : "8");  // planar, closed
  lines_.Put(" 71\n3\n");
  lines_.Integer(" 72", 3 * pieces + 5);
  lines_.Integer(" 73", 3 * pieces + 1);
  lines_.Pair(" 74", "0");
  const auto knots = [&](int64_t value, int times) {
    for (int i = 0; i < times; ++i) lines_.Integer(" 40", value);
  };
  knots(0, 4);
  for (int64_t i = 1; i < pieces; ++i) knots(i, 3);
  knots(pieces, 4);
  const auto control = [&](const P2& p) {
    lines_.Point(Moved(p, at), frame_.decimals);
    lines_.Pair(" 30", "0");
  };
  P2 from = path.start;
  control(from);
  for (const Segment& segment : path.segments) {
    const Segment cubic = AsCubic({from, segment});
    control(cubic.first);
    control(cubic.second);
    control(cubic.end);
    from = segment.end;
  }
}

}  // namespace

Status WriteDrawingDxf(const Drawing& drawing, const DrawingStyle& style,
                       const std::filesystem::path& file) {
  if (style.dxf == DxfVersion::kR12) {
    for (const Shape& shape : drawing.shapes) {
      for (const ShapePath& path : shape) {
        if (!HasCurves(path.path)) continue;
        return Status::Error(Failure::kOther, PathText(file),
                             u"DXF R12 has no curves; arcs or lines can be written");
      }
    }
  }
  return ReplaceWhenFree(
      file, [&](FileReplacement* out) { return DrawingDxf(drawing, style, out).Write(); });
}

}  // namespace kerno
