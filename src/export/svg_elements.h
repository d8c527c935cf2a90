// The elements of an SVG drawing, one function for each kind. Coordinates are the model's (y up);
// they are negated here.
#pragma once

#include <string_view>

#include "export/svg_numbers.h"
#include "export/xml_out.h"
#include "parts/shapes.h"

namespace kerno {

class SvgElements {
 public:
  SvgElements(XmlOut* xml, int digits) : xml_(*xml), digits_(digits) {}

  // "polygon" or "polyline": what its points make.
  void Points(std::string_view name, const Vertices& points);
  void Line(const P2& from, const P2& to);
  void Circle(const P2& centre, double radius);
  void Arc(const ArcShape& arc);

  // A text centred on its anchor. `fill` and `stroke` are colours, or empty to take the group's.
  void Text(const P3& anchor, const TextLine& line, WritingDirection direction,
            std::string_view fill, std::string_view stroke);

  void Number(std::string_view attribute, double value);

 private:
  void Append(std::string* out, double value) { AppendSvgNumber(out, value, digits_); }
  void Transform(double x, double y, double dy, double rotation, double oblique);

  XmlOut& xml_;
  int digits_;
};

// The portable family of a face of the Japanese system, "" for any other.
std::string_view SvgFontFamily(std::u16string_view face);

}  // namespace kerno
