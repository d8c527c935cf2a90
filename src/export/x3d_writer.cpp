#include "export/x3d_writer.h"

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
#include "export/draw_parts.h"
#include "export/file_comment.h"
#include "export/picture_notes.h"
#include "export/svg_numbers.h"
#include "export/xml_out.h"
#include "parts/element_access.h"
#include "parts/face_triangles.h"

namespace kerno {
namespace {

constexpr int kDigits = 15;
constexpr int kCircleSegments = 72;  // of a whole circle

bool CanBeWritten(const P3& p) {
  return IsPictured(p) && IsPictured(p.z);
}

// Points and what they are strung to, for one shape.
class Mesh {
 public:
  explicit Mesh(PictureNotes* notes) : notes_(*notes) {}

  void AddOutlines(const Parts& part) {
    StartPart(part);
    for (const LineItem& line : part.lines.items) AddVertices(part, {line.start, line.end});
    for (const EdgeItem& edge : part.edges.items) {
      AddVertices(part, {edge.values[0], edge.values[1]});
    }
    for (const CircleItem& circle : part.circles.items) AddCircle(part, circle);
    if (part.child) AddOutlines(*part.child);
  }

  void AddFaces(const Parts& part) {
    StartPart(part);
    for (const FaceA& faces : part.faces) {
      for (const FaceItem& face : faces.items) {
        if (!AllCanBeWritten(part, face.vertices)) continue;
        for (const auto& triangle : FaceTriangles(part.vertices.points(), face.vertices)) {
          AddVertices(part, {triangle[0], triangle[1], triangle[2]});
        }
      }
    }
    if (part.child) AddFaces(*part.child);
  }

  bool empty() const { return strings_.empty(); }
  const std::vector<P3>& points() const { return points_; }
  const std::vector<int32_t>& strings() const { return strings_; }  // each ended by -1

 private:
  void StartPart(const Parts& part) { places_.assign(part.vertices.size(), -1); }

  bool AllCanBeWritten(const Parts& part, std::span<const int32_t> indices) {
    for (const int32_t index : indices) {
      const P3* p = VertexAt(part, index);
      if (p && CanBeWritten(*p)) continue;
      ++notes_.left_out;
      return false;
    }
    return true;
  }

  void AddVertices(const Parts& part, std::initializer_list<int32_t> indices) {
    if (!AllCanBeWritten(part, {indices.begin(), indices.end()})) return;
    for (const int32_t index : indices) {
      int32_t& place = places_[static_cast<size_t>(index)];
      if (place < 0) place = AddPoint(part.vertices[static_cast<size_t>(index)]);
      strings_.push_back(place);
    }
    strings_.push_back(-1);
  }

  int32_t AddPoint(const P3& p) {
    points_.push_back(p);
    return static_cast<int32_t>(points_.size()) - 1;
  }

  void AddCircle(const Parts& part, const CircleItem& circle) {
    const CircleShape shape = ShapeOf(part, circle);
    if (!shape.centre || !CanBeWritten(*shape.centre) || !IsPictured(circle.radius) ||
        (shape.start && (!CanBeWritten(*shape.start) || !CanBeWritten(*shape.end)))) {
      ++notes_.left_out;
      return;
    }
    double start = 0;
    double sweep = 360;
    if (shape.start) {
      start = DirectionDegrees(*shape.centre, *shape.start);
      sweep = DirectionDegrees(*shape.centre, *shape.end) - start;
      if (sweep <= 0) sweep += 360;
    }
    const int segments = static_cast<int>(std::ceil(kCircleSegments * sweep / 360));
    const auto at = [&](int i) {
      const double angle = (start + sweep * i / segments) * std::numbers::pi / 180;
      return P3{shape.centre->x + circle.radius * std::cos(angle),
                shape.centre->y + circle.radius * std::sin(angle), shape.centre->z};
    };
    const int32_t first = AddPoint(at(0));
    for (int i = 1; i <= segments; ++i) {
      const bool closes = i == segments && !shape.start;
      const int32_t from = static_cast<int32_t>(points_.size()) - 1;
      strings_.push_back(from);
      strings_.push_back(closes ? first : AddPoint(at(i)));
      strings_.push_back(-1);
    }
  }

  PictureNotes& notes_;
  std::vector<P3> points_;
  std::vector<int32_t> strings_;
  std::vector<int32_t> places_;  // of a part's vertices in points_
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
  std::vector<const PartsElement*> parts;
};

// The parts of each pen or brush colour, in order of first use.
std::vector<ColorGroup> ColorGroups(const PartsA& model, bool brushes) {
  std::map<Color, size_t> places;
  std::vector<ColorGroup> groups;
  for (const PartsElement& part : model.parts) {
    const auto color = static_cast<Color>(brushes ? part.brush.color : part.pen.color) & 0xFFFFFF;
    const auto [place, is_new] = places.try_emplace(color, groups.size());
    if (is_new) groups.push_back({color, {}});
    groups[place->second].parts.push_back(&part);
  }
  return groups;
}

void WriteShapes(const PartsA& model, bool faces, PictureNotes* notes, XmlOut* xml) {
  for (const ColorGroup& group : ColorGroups(model, faces)) {
    Mesh mesh(notes);
    for (const PartsElement* part : group.parts) {
      faces ? mesh.AddFaces(*part) : mesh.AddOutlines(*part);
    }
    if (!mesh.empty()) WriteShape(mesh, group.color, faces, xml);
  }
}

size_t CountWithoutForm(const Parts& part) {
  size_t count = part.texts.items.size() + part.more_texts.items.size() +
                 part.horizontal_texts.items.size() + part.vertical_texts.items.size() +
                 part.point_sets.items.size() + part.more_point_sets.items.size();
  if (part.child) count += CountWithoutForm(*part.child);
  return count;
}

}  // namespace

Status WriteX3d(const PartsA& model, const std::filesystem::path& name, FileReplacement* out) {
  XmlOut xml(out);
  PictureNotes notes;
  xml.Declaration();
  xml.DocumentType(
      "X3D PUBLIC \"ISO//Web3D//DTD X3D 3.3//EN\" "
      "\"http://www.web3d.org/specifications/x3d-3.3.dtd\"");
  xml.Comment(u"\r\n" + FileComment(u"X3D Exporter \t1.22\t"));
  xml.Begin("X3D");
  xml.Attribute("profile", std::string_view("Interchange"));
  xml.Attribute("version", std::string_view("3.3"));
  xml.Attribute("xmlns:xsd", std::string_view("http://www.w3.org/2001/XMLSchema-instance"));
  xml.Attribute("xsd:noNamespaceSchemaLocation",
                std::string_view("http://www.web3d.org/specifications/x3d-3.3.xsd"));
  xml.Begin("Scene");
  WriteShapes(model, false, &notes, &xml);
  WriteShapes(model, true, &notes, &xml);
  xml.End();
  xml.End();
  Status status = xml.Finish();
  if (!status.ok()) return status;
  TellLeftOut(notes, name);
  size_t without_form = 0;
  for (const PartsElement& part : model.parts) without_form += CountWithoutForm(part);
  if (without_form > 0) {
    CurrentNotices().Message(PathText(name) +
                             u": texts and point sets have no form in X3D and are left out");
  }
  return status;
}

Status ExportX3d(const PartsA& model, const std::filesystem::path& file) {
  return ReplaceWhenFree(file, [&](FileReplacement* out) { return WriteX3d(model, file, out); });
}

}  // namespace kerno
