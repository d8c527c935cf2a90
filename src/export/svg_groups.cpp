#include "export/svg_groups.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "base/number_text.h"
#include "base/text.h"
#include "export/hatch.h"
#include "export/svg_parts.h"
#include "parts/shapes.h"
#include "platform/drawing.h"

namespace kerno {
namespace {

// What one group of outlines is drawn with, in an order of its own: no number in it is a
// not-a-number.
struct PenKey {
  std::u16string layer;
  Color color;
  double width;
  PenStyle style;
  double unit_width, unit_length;

  auto Order() const { return std::tie(layer, color, width, style, unit_width, unit_length); }
  bool operator<(const PenKey& other) const { return Order() < other.Order(); }
};

double SizeOr0(double value) {
  return kPicturedXY.Takes(value) ? std::fabs(value) : 0;
}

PenKey KeyOf(const PartsElement& part) {
  const PenAttributes& pen = part.pen;
  const bool known = pen.style >= 0 && pen.style <= static_cast<int32_t>(PenStyle::kNull);
  return {part.name,
          static_cast<Color>(pen.color) & 0xFFFFFF,
          SizeOr0(pen.width),
          known ? static_cast<PenStyle>(pen.style) : PenStyle::kSolid,
          SizeOr0(pen.unit_width),
          SizeOr0(pen.unit_length)};
}

bool HasOutlines(const Parts& part) {
  const ElementCounts counts = CountElements(part);
  return counts.outlines > 0 || counts.texts > 0 || counts.point_sets > 0;
}

bool HasFills(const PartsElement& part) {
  return FillKindOf(part.brush) != HatchKind::kHollow && CountElements(part).faces > 0;
}

class SvgGroups {
 public:
  SvgGroups(const PartsA& model, SvgCanvas* canvas) : parts_(model), canvas_(*canvas) {}

  void AddAll() {
    for (size_t i = 0; i < parts_.size(); ++i) Add(i);
  }
  void Finish() {
    WriteOutlines();
    EndFill();
  }

 private:
  void Add(size_t i) {
    if (HasFills(parts_[i])) {
      WriteOutlines();
      Fill(parts_[i]);
    }
    const PartsElement& part = parts_[i];
    if (!HasOutlines(part)) return;
    const auto [place, is_new] = places_.try_emplace(KeyOf(part), pens_.size());
    if (is_new) pens_.emplace_back();
    pens_[place->second].push_back(static_cast<uint32_t>(i));
  }
  void Fill(const PartsElement& part);
  void EndFill() {
    if (is_filling_) canvas_.xml.End();
    is_filling_ = false;
  }
  void WriteOutlines();
  void BeginOutlines(const PartsElement& part);
  void Comment(const PartsElement& part);

  // What a group of faces is filled with.
  struct Filling {
    std::u16string layer;
    int32_t color = 0;
    HatchKind kind = HatchKind::kSolid;
    bool operator==(const Filling&) const = default;
  };

  PartsView parts_;
  SvgCanvas& canvas_;
  Filling filled_;           // of the group of faces that stands open
  bool is_filling_ = false;  // whether one does
  // The numbers of the parts whose outlines wait to be written, by their pens in order of first
  // use.
  std::vector<std::vector<uint32_t>> pens_;
  std::map<PenKey, size_t> places_;
};

void SvgGroups::Comment(const PartsElement& part) {
  const PenKey pen = KeyOf(part);
  const auto whole = [](int64_t value) {
    std::string text;
    AppendInteger(&text, value);
    return Utf8ToUtf16Lossy(text);
  };
  canvas_.xml.Comment(u" Layer  =" + pen.layer + u" PColor =" +
                      Utf8ToUtf16Lossy(SvgColor(pen.color)) + u" PStyle =" +
                      whole(static_cast<int>(pen.style)) + u" PWidth =" +
                      SvgNumberText(pen.width, canvas_.digits) + u" UWidth =" +
                      SvgNumberText(pen.unit_width, canvas_.digits) + u" ULength=" +
                      SvgNumberText(pen.unit_length, canvas_.digits) + u" HInt   =" +
                      whole(part.brush.hatch) + u" ");
}

void SvgGroups::Fill(const PartsElement& part) {
  const Filling filling = {part.name, part.brush.color, FillKindOf(part.brush)};
  const bool solid = filling.kind == HatchKind::kSolid;
  if (!is_filling_ || filled_ != filling) {
    EndFill();
    filled_ = filling;
    is_filling_ = true;
    Comment(part);
    const std::string color = SvgColor(static_cast<Color>(part.brush.color));
    canvas_.xml.Begin("g");
    canvas_.xml.Attribute("stroke", std::string_view(solid ? "none" : color));
    if (!solid) canvas_.shapes.Number("stroke-width", canvas_.hairline);
    canvas_.xml.Attribute("fill", std::string_view(solid ? color : "none"));
    if (solid) canvas_.xml.Attribute("fill-rule", std::string_view("evenodd"));
  }
  WriteSvgFaces(part, &canvas_);
}

void SvgGroups::WriteOutlines() {
  if (pens_.empty()) return;
  EndFill();
  for (const auto& parts : pens_) {
    BeginOutlines(parts_[parts[0]]);
    for (const uint32_t i : parts) WriteSvgOutlines(parts_[i], &canvas_);
    canvas_.xml.End();
  }
  pens_.clear();
  places_.clear();
}

void SvgGroups::BeginOutlines(const PartsElement& part) {
  const PenKey pen = KeyOf(part);
  Comment(part);
  canvas_.xml.Begin("g");
  canvas_.xml.Attribute(
      "stroke",
      std::string_view(pen.style == PenStyle::kNull ? std::string("none") : SvgColor(pen.color)));
  canvas_.shapes.Number("stroke-width", pen.width > 0 ? pen.width : canvas_.hairline);
  canvas_.xml.Attribute("stroke-linecap",
                        std::string_view("round"));  // as the desktop's pens have them
  canvas_.xml.Attribute("stroke-linejoin", std::string_view("round"));
  canvas_.xml.Attribute("fill", std::string_view("none"));
  // Lengths are multiples of the line's width; a length of the pen's own is kept.
  const PenData data = {pen.style, pen.width / canvas_.hairline, pen.color,
                        pen.unit_length / canvas_.hairline};
  const std::vector<double> dashes = DashLengths(data);
  if (!dashes.empty()) {
    std::string* out = canvas_.xml.BeginAttribute("stroke-dasharray");
    for (const double length : dashes) {
      if (out->back() != '"') out->push_back(' ');
      AppendSvgNumber(out, length * canvas_.hairline, canvas_.digits);
    }
    canvas_.xml.EndAttribute();
  }
}

}  // namespace

bool HasHairlines(const PartsA& model) {
  return std::ranges::any_of(PartsView(model), [](const PartsElement& part) {
    return KeyOf(part).width == 0 && HasOutlines(part);
  });
}

void WriteSvgGroups(const PartsA& model, SvgCanvas* canvas) {
  SvgGroups groups(model, canvas);
  groups.AddAll();
  groups.Finish();
}

}  // namespace kerno
