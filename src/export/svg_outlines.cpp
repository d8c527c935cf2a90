#include "export/svg_outlines.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "base/number_text.h"
#include "base/text.h"
#include "export/hatch.h"
#include "export/svg_fills.h"
#include "platform/drawing.h"

namespace kerno {
namespace {

constexpr double kPointArm = 2;  // hairlines of a point's cross on either side

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
  return IsPictured(value) ? std::fabs(value) : 0;
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
  return !part.lines.items.empty() || !part.edges.items.empty() || !part.circles.items.empty() ||
         !part.point_sets.items.empty() || !part.more_point_sets.items.empty() || HasTexts(part) ||
         (part.child && HasOutlines(*part.child));
}

class SvgOutlines {
 public:
  SvgOutlines(const PartsA& model, SvgCanvas* canvas) : model_(model), canvas_(*canvas) {}
  void Write();

 private:
  void PenComment(const PenKey& pen, const PartsElement& part);
  void Outlines(const Parts& part, const PartsElement& owner);
  void Lines(const Parts& part);
  void Chain(std::vector<const P3*>* chain);
  void Circles(const Parts& part);
  void Points(const Parts& part, const PointA& sets);
  void Texts(const Parts& part, const PartsElement& owner);

  const PartsA& model_;
  SvgCanvas& canvas_;
};

void SvgOutlines::PenComment(const PenKey& pen, const PartsElement& part) {
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

void SvgOutlines::Write() {
  std::map<PenKey, size_t> places;
  std::vector<std::vector<const PartsElement*>> groups;
  for (const PartsElement& part : model_.parts) {
    if (!HasOutlines(part)) continue;
    const auto [place, is_new] = places.try_emplace(KeyOf(part), groups.size());
    if (is_new) groups.emplace_back();
    groups[place->second].push_back(&part);
  }
  for (const auto& group : groups) {
    const PenKey pen = KeyOf(*group[0]);
    PenComment(pen, *group[0]);
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
    for (const PartsElement* part : group) Outlines(*part, *part);
    canvas_.xml.End();
  }
}

void SvgOutlines::Outlines(const Parts& part, const PartsElement& owner) {
  Lines(part);
  for (const EdgeItem& edge : part.edges.items) {
    const P3* from = canvas_.Shown(part, edge.values[0]);
    const P3* to = from ? canvas_.Shown(part, edge.values[1]) : nullptr;
    if (to) canvas_.shapes.Line({from->x, from->y}, {to->x, to->y});
  }
  Circles(part);
  Points(part, part.point_sets);
  Points(part, part.more_point_sets);
  Texts(part, owner);
  if (part.child) Outlines(*part.child, owner);
}

// Lines that chain are one path: a polygon where they come back to their first vertex, a polyline
// where they do not.
void SvgOutlines::Lines(const Parts& part) {
  std::vector<const P3*> chain;
  int32_t first = -1;
  int32_t last = -1;
  for (const LineItem& line : part.lines.items) {
    if (chain.empty() || line.start != last) {
      Chain(&chain);
      const P3* from = canvas_.Shown(part, line.start);
      if (!from) continue;
      chain.push_back(from);
      first = line.start;
    }
    const P3* to = canvas_.Shown(part, line.end);
    last = line.end;
    if (to && line.end == first && chain.size() >= 3) {
      canvas_.shapes.Points("polygon", chain);
      chain.clear();
    } else if (to) {
      chain.push_back(to);
    } else {
      Chain(&chain);
    }
  }
  Chain(&chain);
}

// Writes an open chain and empties it.
void SvgOutlines::Chain(std::vector<const P3*>* chain) {
  if (chain->size() == 2) {
    canvas_.shapes.Line({(*chain)[0]->x, (*chain)[0]->y}, {(*chain)[1]->x, (*chain)[1]->y});
  } else if (chain->size() > 2) {
    canvas_.shapes.Points("polyline", *chain);
  }
  chain->clear();
}

void SvgOutlines::Circles(const Parts& part) {
  for (const CircleItem& circle : part.circles.items) {
    const CircleShape shape = ShapeOf(part, circle);
    const bool shown = shape.centre && IsPictured(*shape.centre) && IsPictured(circle.radius) &&
                       (!shape.start || (IsPictured(*shape.start) && IsPictured(*shape.end)));
    if (!shown) {
      ++canvas_.left_out;
    } else if (shape.start) {
      canvas_.shapes.Arc(shape, std::fabs(circle.radius));
    } else {
      canvas_.shapes.Circle({shape.centre->x, shape.centre->y}, std::fabs(circle.radius));
    }
  }
}

void SvgOutlines::Points(const Parts& part, const PointA& sets) {
  const double arm = kPointArm * canvas_.hairline;
  for (const PointSet& set : sets.items) {
    for (const int32_t index : set.vertices) {
      const P3* p = canvas_.Shown(part, index);
      if (!p) continue;
      canvas_.shapes.Line({p->x - arm, p->y}, {p->x + arm, p->y});
      canvas_.shapes.Line({p->x, p->y - arm}, {p->x, p->y + arm});
    }
  }
}

void SvgOutlines::Texts(const Parts& part, const PartsElement& owner) {
  for (const TextA* texts : {&part.texts, &part.more_texts}) {
    for (const TextItem& item : texts->items) {
      TextLine line;
      line.text = item.text;
      const P3* anchor = canvas_.Shown(part, item.anchor);
      if (anchor) {
        canvas_.shapes.Text(*anchor, line, WritingDirection::kHorizontal,
                            SvgColor(KeyOf(owner).color), "none");
      }
    }
  }
  const std::string fill = SvgFillOf(owner.brush) == SvgFill::kNone
                               ? std::string("none")
                               : SvgColor(static_cast<Color>(owner.brush.color));
  for (const TextLine& line : part.horizontal_texts.items) {
    const P3* anchor = canvas_.Shown(part, line.anchor);
    if (anchor) canvas_.shapes.Text(*anchor, line, WritingDirection::kHorizontal, fill, "");
  }
  for (const TextLine& line : part.vertical_texts.items) {
    const P3* anchor = canvas_.Shown(part, line.anchor);
    if (anchor) canvas_.shapes.Text(*anchor, line, WritingDirection::kVertical, fill, "");
  }
}

}  // namespace

bool HasTexts(const Parts& part) {
  return !part.texts.items.empty() || !part.more_texts.items.empty() ||
         !part.horizontal_texts.items.empty() || !part.vertical_texts.items.empty() ||
         (part.child && HasTexts(*part.child));
}

bool HasHairlines(const PartsA& model) {
  return std::ranges::any_of(model.parts, [](const PartsElement& part) {
    return KeyOf(part).width == 0 && HasOutlines(part);
  });
}

void WriteSvgOutlines(const PartsA& model, SvgCanvas* canvas) {
  SvgOutlines(model, canvas).Write();
}

}  // namespace kerno
