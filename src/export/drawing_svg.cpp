#include "export/drawing_svg.h"

#include <array>
#include <cmath>
#include <string>
#include <string_view>

#include "base/file_wait.h"
#include "base/text.h"
#include "drawing/affine.h"
#include "drawing/measures.h"
#include "export/aci.h"
#include "export/fixed_number.h"
#include "export/svg_numbers.h"
#include "export/xml_out.h"

namespace kerno {
namespace {

class DrawingSvg {
 public:
  DrawingSvg(const Drawing& drawing, const DrawingStyle& style, FileReplacement* out)
      : drawing_(drawing),
        style_(style),
        layers_(drawing, style),
        xml_(out),
        box_(InkOf(drawing)),
        decimals_(drawing.unit == LengthUnit::kInch ? 8 : 6) {
    if (!(box_.min.x <= box_.max.x)) box_ = {{0, 0}, {0, 0}};
    down_ = FlippedY(1, {-box_.min.x, box_.max.y});
  }

  Status Write();

 private:
  void Number(std::string_view attribute, double value, std::string_view unit) {
    std::string* out = xml_.BeginAttribute(attribute);
    AppendFixed(out, value, decimals_);
    out->append(unit);
    xml_.EndAttribute();
  }
  void Group(size_t layer);
  void ShapeOnLayer(const PlacedShape& placed, size_t n, size_t layer);
  void Append(std::string* out, const P2& p) {
    std::array<char, 2 * kLongestFixed + 1> text;
    char* at = PutFixed(text.data(), p.x, decimals_);
    *at++ = ' ';
    out->append(text.data(), PutFixed(at, p.y, decimals_));
  }
  void AppendPath(std::string* out, const Path& path, const P2& at);
  void AppendSegment(std::string* out, const P2& from, const Segment& segment, const Affine& place);

  const Drawing& drawing_;
  const DrawingStyle& style_;
  DrawingLayers layers_;
  XmlOut xml_;
  Box2 box_;
  int decimals_;
  Affine down_;  // from the drawing's y up to the picture's y down
};

Status DrawingSvg::Write() {
  const std::string_view unit = drawing_.unit == LengthUnit::kInch ? "in" : "mm";
  // Readers refuse a picture of no size.
  const double least = drawing_.unit == LengthUnit::kInch ? 0.001 : 0.01;
  const double width = std::max(box_.Width(), least);
  const double height = std::max(box_.Height(), least);
  xml_.Declaration();
  xml_.Begin("svg");
  xml_.Attribute("xmlns", std::string_view("http://www.w3.org/2000/svg"));
  Number("width", width, unit);
  Number("height", height, unit);
  std::string* out = xml_.BeginAttribute("viewBox");
  *out += "0 0 ";
  Append(out, {width, height});
  xml_.EndAttribute();
  for (size_t layer = 0; layer < layers_.names().size(); ++layer) Group(layer);
  xml_.End();
  return xml_.Finish();
}

void DrawingSvg::Group(size_t layer) {
  const std::string color = SvgColor(AciToRgb(style_.color));
  const bool cuts = style_.svg == SvgLook::kCut;
  xml_.Begin("g");
  xml_.Attribute("id", std::u16string_view(layers_.names()[layer]));
  xml_.Attribute("fill", std::string_view(cuts ? "none" : color));
  if (cuts) {
    xml_.Attribute("stroke", std::string_view(color));
    // What laser drivers take for a hairline: a thousandth of an inch.
    Number("stroke-width", drawing_.unit == LengthUnit::kInch ? 0.001 : 0.0254, "");
  } else {
    xml_.Attribute("fill-rule", std::string_view("nonzero"));
  }
  const bool alone = style_.layers == LayerRule::kGlyph;  // a shape for each layer
  const size_t first = alone ? layer : 0;
  const size_t last = alone ? layer + 1 : drawing_.placed.size();
  for (size_t n = first; n < last; ++n) ShapeOnLayer(drawing_.placed[n], n, layer);
  xml_.End();
}

void DrawingSvg::ShapeOnLayer(const PlacedShape& placed, size_t n, size_t layer) {
  std::string* out = nullptr;
  for (const ShapePath& path : drawing_.shapes[placed.shape]) {
    if (path.path.segments.empty() || layers_.Of(placed, n, path) != layer) continue;
    if (!out) {
      xml_.Begin("path");
      out = xml_.BeginAttribute("d");
    }
    AppendPath(out, path.path, placed.at);
  }
  if (!out) return;
  xml_.EndAttribute();
  xml_.End();
  xml_.FlushLong();
}

void DrawingSvg::AppendPath(std::string* out, const Path& path, const P2& at) {
  Affine place = down_;
  place.to = down_.Apply(at);
  out->push_back('M');
  Append(out, place.Apply(path.start));
  P2 from = path.start;
  for (const Segment& segment : path.segments) {
    AppendSegment(out, from, segment, place);
    from = segment.end;
  }
  if (path.closed) out->push_back('Z');
}

void DrawingSvg::AppendSegment(std::string* out, const P2& from, const Segment& segment,
                               const Affine& place) {
  switch (segment.kind) {
    case SegmentKind::kLine:
      out->push_back('L');
      break;
    case SegmentKind::kQuadratic:
      out->push_back('Q');
      Append(out, place.Apply(segment.first));
      out->push_back(' ');
      break;
    case SegmentKind::kCubic:
      out->push_back('C');
      Append(out, place.Apply(segment.first));
      out->push_back(' ');
      Append(out, place.Apply(segment.second));
      out->push_back(' ');
      break;
    case SegmentKind::kArc: {
      // Two more decimals than the points, so that the arc meets them.
      const double bulge = std::fabs(segment.bulge);
      const P2 chord = {segment.end.x - from.x, segment.end.y - from.y};
      const double length = std::sqrt(chord.x * chord.x + chord.y * chord.y);
      const double radius = length * (1 + bulge * bulge) / (4 * bulge);
      out->push_back('A');
      AppendFixed(out, radius, decimals_);
      out->push_back(' ');
      AppendFixed(out, radius, decimals_);
      // Counter-clockwise with y up is against the sweep of y down.
      *out += bulge > 1 ? " 0 1 " : " 0 0 ";
      *out += segment.bulge > 0 ? "0 " : "1 ";
      break;
    }
  }
  Append(out, place.Apply(segment.end));
}

}  // namespace

Status WriteDrawingSvg(const Drawing& drawing, const DrawingStyle& style,
                       const std::filesystem::path& file) {
  return ReplaceWhenFree(
      file, [&](FileReplacement* out) { return DrawingSvg(drawing, style, out).Write(); });
}

}  // namespace kerno
