#include "export/svg_elements.h"

#include <cmath>

namespace kerno {
namespace {

constexpr double kFontSize = 0.9;  // of the text's height
constexpr double kUpright = 1e-7;  // degrees

// -y, and 0 for a zero of either sign.
double Flipped(double y) {
  return 0.0 - y;
}

double FiniteOr0(double value) {
  return std::isfinite(value) ? value : 0;
}

bool HasBlanksToKeep(std::u16string_view text) {
  return text.starts_with(u' ') || text.ends_with(u' ') || text.find(u"  ") != text.npos ||
         text.find_first_of(u"\t\r\n") != text.npos;
}

}  // namespace

std::string_view SvgFontFamily(std::u16string_view face) {
  if (face.starts_with(u'@')) face.remove_prefix(1);
  if (face == u"ＭＳ ゴシック") return "MS-Gothic";
  if (face == u"ＭＳ 明朝") return "MS-Mincho";
  if (face == u"ＭＳ Pゴシック" || face == u"ＭＳ Ｐゴシック") return "MS-PGothic";
  if (face == u"ＭＳ P明朝" || face == u"ＭＳ Ｐ明朝") return "MS-PMincho";
  return "";
}

void SvgElements::Number(std::string_view attribute, double value) {
  Append(xml_.BeginAttribute(attribute), value);
  xml_.EndAttribute();
}

void SvgElements::Points(std::string_view name, const Vertices& points) {
  xml_.Begin(name);
  std::string* out = xml_.BeginAttribute("points");
  for (size_t i = 0; i < points.size(); ++i) {
    if (i > 0) out->push_back(' ');
    Append(out, points[i].x);
    out->push_back(',');
    Append(out, Flipped(points[i].y));
    xml_.FlushLong();
  }
  xml_.EndAttribute();
  xml_.End();
}

void SvgElements::Line(const P2& from, const P2& to) {
  xml_.Begin("line");
  Number("x1", from.x);
  Number("y1", Flipped(from.y));
  Number("x2", to.x);
  Number("y2", Flipped(to.y));
  xml_.End();
}

void SvgElements::Circle(const P2& centre, double radius) {
  xml_.Begin("circle");
  Number("cx", centre.x);
  Number("cy", Flipped(centre.y));
  Number("r", radius);
  xml_.End();
}

void SvgElements::Arc(const ArcShape& arc) {
  const double radius = std::fabs(arc.radius);
  const bool is_large = arc.start_angle != arc.end_angle && arc.Sweep() > 180;
  xml_.Begin("path");
  std::string* out = xml_.BeginAttribute("d");
  const auto point = [&](const P3& p) {
    Append(out, p.x);
    out->push_back(',');
    Append(out, Flipped(p.y));
  };
  out->push_back('M');
  point(arc.start);
  *out += " A";
  Append(out, radius);
  out->push_back(',');
  Append(out, radius);
  *out += is_large ? " 0 1,0 " : " 0 0,0 ";
  point(arc.end);
  xml_.EndAttribute();
  xml_.End();
}

// Classic: each function ends with a tab; all files so far have it so.
void SvgElements::Transform(double x, double y, double dy, double rotation, double oblique) {
  std::string* out = xml_.BeginAttribute("transform");
  *out += "translate(";
  Append(out, x);
  out->push_back(',');
  Append(out, y);
  *out += ")\t";
  if (rotation != 0) {
    *out += "rotate(";
    Append(out, -rotation);
    *out += ",0,0)\t";
  }
  if (oblique != 0) {
    *out += "skewX(";
    Append(out, oblique);
    *out += ")\t";
  }
  *out += "translate(0,";
  Append(out, dy);
  *out += ")\t";
  xml_.EndAttribute();
}

void SvgElements::Text(const P3& anchor, const TextLine& line, WritingDirection direction,
                       std::string_view fill, std::string_view stroke) {
  const bool vertical = direction == WritingDirection::kVertical;
  double height = std::fabs(line.height);
  if (!(height > 0) || !std::isfinite(height)) height = kDefaultTextHeight;
  const double rotation = FiniteOr0(line.rotation);
  const double oblique = FiniteOr0(line.oblique);
  xml_.Begin("text");
  if (vertical) xml_.Attribute("writing-mode", std::string_view("tb"));
  xml_.Attribute("text-anchor", std::string_view("middle"));
  Number("font-size", height * kFontSize);
  const std::string_view family = SvgFontFamily(line.face_name);
  if (!family.empty()) xml_.Attribute("font-family", family);
  const double dy = vertical ? 0 : height / 3;
  const double y = Flipped(anchor.y);
  if (std::fabs(rotation) < kUpright && std::fabs(oblique) < kUpright) {
    Number("x", anchor.x);
    Number("y", y + dy);
  } else {
    Transform(anchor.x, y, dy, rotation, oblique);
  }
  if (!fill.empty()) xml_.Attribute("fill", fill);
  if (!stroke.empty()) xml_.Attribute("stroke", stroke);
  if (HasBlanksToKeep(line.text)) xml_.Attribute("xml:space", std::string_view("preserve"));
  xml_.Text(line.text);
  xml_.End();
}

}  // namespace kerno
