#include "export/drawing_svg.h"

#include <array>
#include <cmath>
#include <string>
#include <string_view>

#include "base/file_wait.h"
#include "base/stop.h"
#include "base/text.h"
#include "drawing/affine.h"
#include "drawing/measures.h"
#include "drawing/segment.h"
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
        box_(PictureOf(drawing)),
        decimals_(drawing.unit == LengthUnit::kInch ? 8 : 6) {
    if (!(box_.min.x <= box_.max.x)) box_ = {{0, 0}, {0, 0}};
    down_ = FlippedY(1, {-box_.min.x, box_.max.y});
    ways_.resize(drawing.shapes.size());
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
  void Append(std::string* out, const P2& p) const {
    std::array<char, 2 * kLongestFixed + 1> text;
    char* at = PutFixed(text.data(), p.x, decimals_);
    *at++ = ' ';
    out->append(text.data(), PutFixed(at, p.y, decimals_));
  }
  // `way` keeps what is the same for every place of the path.
  void AppendPath(std::string* out, const Path& path, const P2& at, std::string* way) const;
  std::string WayOf(const Path& path) const;

  // A point in units of the last decimal, y down.
  struct GridStep {
    int64_t x, y;
  };
  GridStep OnGrid(const P2& p) const {
    return {FixedUnits(p.x, decimals_), -FixedUnits(p.y, decimals_)};
  }

  const Drawing& drawing_;
  const DrawingStyle& style_;
  DrawingLayers layers_;
  XmlOut xml_;
  Box2 box_;
  int decimals_;
  Affine down_;                                 // from the drawing's y up to the picture's y down
  std::vector<std::vector<std::string>> ways_;  // of the paths of each shape, as they are needed
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
  for (size_t layer = 0; layer < layers_.all().size(); ++layer) Group(layer);
  xml_.End();
  return xml_.Finish();
}

void DrawingSvg::Group(size_t layer) {
  const std::string color = SvgColor(ColorOnPaper(layers_.all()[layer].color));
  const bool cuts = style_.svg == SvgLook::kCut || drawing_.strokes ||
                    layers_.all()[layer].role != ShapeRole::kText;
  xml_.Begin("g");
  xml_.Attribute("id", std::u16string_view(layers_.all()[layer].name));
  xml_.Attribute("fill", std::string_view(cuts ? "none" : color));
  if (cuts) {
    xml_.Attribute("stroke", std::string_view(color));
    Number("stroke-width", HairlineOf(drawing_.unit), "");
  } else {
    xml_.Attribute("fill-rule", std::string_view("nonzero"));
  }
  const auto [first, last] = layers_.PlacedOn(layer);
  for (size_t n = first; n < last; ++n) {
    StopIfAsked();
    ShapeOnLayer(drawing_.placed[n], n, layer);
  }
  xml_.End();
}

void DrawingSvg::ShapeOnLayer(const PlacedShape& placed, size_t n, size_t layer) {
  std::string* out = nullptr;
  const Shape& shape = drawing_.shapes[placed.shape];
  std::vector<std::string>& ways = ways_[placed.shape];
  ways.resize(shape.size());
  for (const ShapePath& path : shape) {
    if (path.path.segments.empty() || layers_.Of(placed, n, path) != layer) continue;
    if (!out) {
      xml_.Begin("path");
      out = xml_.BeginAttribute("d");
    }
    AppendPath(out, path.path, placed.at, &ways[static_cast<size_t>(&path - shape.data())]);
  }
  if (!out) return;
  xml_.EndAttribute();
  xml_.End();
  xml_.FlushLong();
}

void DrawingSvg::AppendPath(std::string* out, const Path& path, const P2& at,
                            std::string* way) const {
  out->push_back('M');
  Append(out, down_.Apply({at.x + path.start.x, at.y + path.start.y}));
  if (way->empty()) *way = WayOf(path);
  *out += *way;
}

// Everything after a path's start, which is the same wherever the path stands: steps from point to
// point, between points that are rounded to decimals first, so that rounding adds up nowhere.
std::string DrawingSvg::WayOf(const Path& path) const {
  std::string way;
  GridStep from = OnGrid(path.start);
  P2 start = path.start;
  const auto step = [&](const P2& to, char before) {
    std::array<char, 2 * kLongestFixed + 2> text;
    const GridStep p = OnGrid(to);
    text[0] = before;
    char* at = PutFixedUnits(&text[1], p.x - from.x, decimals_);
    *at++ = ' ';
    way.append(text.data(), PutFixedUnits(at, p.y - from.y, decimals_));
  };
  for (const Segment& segment : path.segments) {
    switch (segment.kind) {
      case SegmentKind::kLine:
        step(segment.end, 'l');
        break;
      case SegmentKind::kQuadratic:
        step(segment.first, 'q');
        step(segment.end, ' ');
        break;
      case SegmentKind::kCubic:
        step(segment.first, 'c');
        step(segment.second, ' ');
        step(segment.end, ' ');
        break;
      case SegmentKind::kArc: {
        const double bulge = std::fabs(segment.bulge);
        const double radius = RadiusOf({start, segment});
        way.push_back('a');
        AppendFixed(&way, radius, decimals_);
        way.push_back(' ');
        AppendFixed(&way, radius, decimals_);
        // Counter-clockwise with y up is against the sweep of y down.
        way += bulge > 1 ? " 0 1 " : " 0 0 ";
        way += segment.bulge > 0 ? "0" : "1";
        step(segment.end, ' ');
        break;
      }
    }
    start = segment.end;
    from = OnGrid(start);
  }
  if (path.closed) way.push_back('z');
  return way;
}

}  // namespace

Status WriteDrawingSvg(const Drawing& drawing, const DrawingStyle& style,
                       const std::filesystem::path& file) {
  return ReplaceWhenFree(
      file, [&](FileReplacement* out) { return DrawingSvg(drawing, style, out).Write(); });
}

}  // namespace kerno
