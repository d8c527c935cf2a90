#include "export/x3d_writer.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <numbers>
#include <string>
#include <vector>

#include "base/file_wait.h"
#include "base/notices.h"
#include "base/number_text.h"
#include "base/text.h"
#include "export/file_comment.h"
#include "export/picture_notes.h"
#include "export/svg_numbers.h"
#include "export/xml_out.h"
#include "parts/face_triangles.h"
#include "parts/shapes.h"

namespace kerno {
namespace {

constexpr int kDigits = 15;
constexpr int kCircleSegments = 72;  // of a whole circle

// Points and what they are strung to, for one shape of the scene.
class Mesh final : public ShapeSink {
 public:
  bool empty() const { return strings_.empty(); }
  const std::vector<P3>& points() const { return points_; }
  const std::vector<int32_t>& strings() const { return strings_; }  // each ended by -1

 private:
  void BeginPool(std::span<const P3> pool) override { places_.assign(pool.size(), -1); }

  void Polyline(const Vertices& points) override {
    for (size_t i = 1; i < points.size(); ++i) {
      AddString(points.pool, {points.indices[i - 1], points.indices[i]});
    }
  }
  void Face(const Vertices& loop) override {
    for (const auto& [a, b, c] : FaceTriangles(loop.pool, loop.indices)) {
      AddString(loop.pool, {a, b, c});
    }
  }
  void Circle(const CircleShape& circle) override {
    AddTurn(circle.centre, circle.radius, 0, 360);
    // The last segment ends where the first one begins.
    points_.pop_back();
    strings_[strings_.size() - 2] = static_cast<int32_t>(points_.size()) - kCircleSegments;
  }
  void Arc(const ArcShape& arc) override {
    AddTurn(arc.centre, arc.radius, arc.start_angle, arc.Sweep());
  }

  void AddString(std::span<const P3> pool, std::initializer_list<int32_t> indices) {
    for (const int32_t index : indices) {
      int32_t& place = places_[static_cast<size_t>(index)];
      if (place < 0) place = AddPoint(pool[static_cast<size_t>(index)]);
      strings_.push_back(place);
    }
    strings_.push_back(-1);
  }

  int32_t AddPoint(const P3& p) {
    points_.push_back(p);
    return static_cast<int32_t>(points_.size()) - 1;
  }

  void AddTurn(const P3& centre, double radius, double start, double sweep) {
    const int segments = static_cast<int>(std::ceil(kCircleSegments * sweep / 360));
    for (int i = 0; i <= segments; ++i) {
      const double angle = (start + sweep * i / segments) * std::numbers::pi / 180;
      const int32_t place = AddPoint(
          {centre.x + radius * std::cos(angle), centre.y + radius * std::sin(angle), centre.z});
      if (i > 0) strings_.insert(strings_.end(), {place - 1, place, -1});
    }
  }

  std::vector<P3> points_;
  std::vector<int32_t> strings_;
  std::vector<int32_t> places_;  // of the pool's vertices in points_
};

std::string ColorText(Color color) {
  std::string text;
  for (const int channel : {Red(color), Green(color), Blue(color)}) {
    if (!text.empty()) text.push_back(' ');
    AppendGeneral(&text, channel / 255.0, 4);
  }
  return text;
}

void WriteShape(const Mesh& mesh, Color color, bool faces, XmlOut* xml) {
  xml->Begin("Shape");
  xml->Begin("Appearance");
  xml->Begin("Material");
  xml->Attribute(faces ? "diffuseColor" : "emissiveColor", std::string_view(ColorText(color)));
  xml->End();
  xml->End();
  xml->Begin(faces ? "IndexedFaceSet" : "IndexedLineSet");
  if (faces) xml->Attribute("solid", std::string_view("false"));
  std::string* out = xml->BeginAttribute("coordIndex");
  for (const int32_t index : mesh.strings()) {
    if (out->empty() || out->back() != '"') out->push_back(' ');
    AppendInteger(out, index);
    xml->FlushLong();
  }
  xml->EndAttribute();
  xml->Begin("Coordinate");
  out = xml->BeginAttribute("point");
  for (const P3& p : mesh.points()) {
    for (const double value : {p.x, p.y, p.z}) {
      if (out->empty() || out->back() != '"') out->push_back(' ');
      AppendSvgNumber(out, value, kDigits);
    }
    xml->FlushLong();
  }
  xml->EndAttribute();
  xml->End();
  xml->End();
  xml->End();
}

struct ColorGroup {
  Color color;
  std::vector<uint32_t> parts;  // their numbers
};

// The parts of each pen or brush colour, in order of first use.
std::vector<ColorGroup> ColorGroups(const PartsView& parts, bool brushes) {
  std::map<Color, size_t> places;
  std::vector<ColorGroup> groups;
  for (size_t i = 0; i < parts.size(); ++i) {
    const PartsElement& part = parts[i];
    const auto color = static_cast<Color>(brushes ? part.brush.color : part.pen.color) & 0xFFFFFF;
    const auto [place, is_new] = places.try_emplace(color, groups.size());
    if (is_new) groups.push_back({color, {}});
    groups[place->second].parts.push_back(static_cast<uint32_t>(i));
  }
  return groups;
}

// How many elements were left out.
size_t WriteShapes(const PartsView& parts, bool faces, XmlOut* xml) {
  const ShapeOrder order = faces ? ShapeOrder::kFaces : ShapeOrder::kAllButFaces;
  size_t left_out = 0;
  for (const ColorGroup& group : ColorGroups(parts, faces)) {
    Mesh mesh;
    for (const uint32_t i : group.parts) {
      left_out += VisitShapes(parts[i], order, kPicturedXYZ, &mesh);
    }
    if (!mesh.empty()) WriteShape(mesh, group.color, faces, xml);
  }
  return left_out;
}

bool HasNoForm(const PartsElement& part) {
  const ElementCounts counts = CountElements(part);
  return counts.texts > 0 || counts.point_sets > 0;
}

}  // namespace

Status WriteX3d(const PartsA& model, const std::filesystem::path& name, FileReplacement* out,
                std::optional<int64_t> moment) {
  XmlOut xml(out);
  xml.Declaration();
  xml.DocumentType(
      "X3D PUBLIC \"ISO//Web3D//DTD X3D 3.3//EN\" "
      "\"http://www.web3d.org/specifications/x3d-3.3.dtd\"");
  xml.Comment(u"\r\n" + FileComment(u"X3D Exporter \t1.22\t", moment));
  xml.Begin("X3D");
  xml.Attribute("profile", std::string_view("Interchange"));
  xml.Attribute("version", std::string_view("3.3"));
  xml.Attribute("xmlns:xsd", std::string_view("http://www.w3.org/2001/XMLSchema-instance"));
  xml.Attribute("xsd:noNamespaceSchemaLocation",
                std::string_view("http://www.web3d.org/specifications/x3d-3.3.xsd"));
  xml.Begin("Scene");
  const PartsView parts(model);
  size_t left_out = WriteShapes(parts, false, &xml);
  left_out += WriteShapes(parts, true, &xml);
  xml.End();
  xml.End();
  Status status = xml.Finish();
  if (!status.ok()) return status;
  TellLeftOut({.left_out = left_out}, kPicturedXYZ, name);
  if (std::ranges::any_of(parts, HasNoForm)) {
    CurrentNotices().Message(PathText(name) +
                             u": texts and point sets have no form in X3D and are left out");
  }
  return status;
}

Status ExportX3d(const PartsA& model, const std::filesystem::path& file,
                 std::optional<int64_t> moment) {
  return ReplaceWhenFree(file,
                         [&](FileReplacement* out) { return WriteX3d(model, file, out, moment); });
}

}  // namespace kerno
