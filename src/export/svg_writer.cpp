#include "export/svg_writer.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "base/dump_log.h"
#include "base/number_text.h"
#include "base/text.h"
#include "export/draw_parts.h"
#include "export/file_comment.h"
#include "export/hatch.h"
#include "export/picture_notes.h"
#include "export/svg_elements.h"

namespace kerno {
namespace {

constexpr double kPointArm = 2;  // hairlines of a point's cross on either side

std::u16string Wide(std::string_view ascii) {
  return {ascii.begin(), ascii.end()};
}

std::u16string WideNumber(double value, int digits) {
  std::string text;
  AppendSvgNumber(&text, value, digits);
  return Wide(text);
}

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

bool HasTexts(const Parts& part) {
  return !part.texts.items.empty() || !part.more_texts.items.empty() ||
         !part.horizontal_texts.items.empty() || !part.vertical_texts.items.empty() ||
         (part.child && HasTexts(*part.child));
}

bool HasOutlines(const Parts& part) {
  return !part.lines.items.empty() || !part.edges.items.empty() || !part.circles.items.empty() ||
         !part.point_sets.items.empty() || !part.more_point_sets.items.empty() || HasTexts(part) ||
         (part.child && HasOutlines(*part.child));
}

bool HasFaces(const Parts& part) {
  return std::ranges::any_of(part.faces, [](const FaceA& a) { return !a.items.empty(); }) ||
         (part.child && HasFaces(*part.child));
}

enum class Fill { kNone, kSolid, kHatched };

Fill FillOf(const BrushAttributes& brush) {
  if (brush.style == static_cast<int32_t>(BrushStyle::kHollow)) return Fill::kNone;
  if (brush.style != static_cast<int32_t>(BrushStyle::kHatched)) return Fill::kSolid;
  const HatchKind kind = HatchKindOf(brush.hatch);
  if (kind == HatchKind::kHollow) return Fill::kNone;
  return kind == HatchKind::kSolid ? Fill::kSolid : Fill::kHatched;
}

// The box that a reader shows: of a drawing without width or height something of it is made.
struct ViewBox {
  double left, top, width, height;
};

class SvgDrawing {
 public:
  SvgDrawing(const PartsA& model, XmlOut* xml)
      : model_(model), xml_(*xml), digits_(SvgPrecision()), shapes_(xml, digits_) {
    const bool texts =
        std::ranges::any_of(model.parts, [](const PartsElement& p) { return HasTexts(p); });
    const std::unique_ptr<DeviceContext> dc = texts ? CreateMeasuringContext() : nullptr;
    box_ = PictureBox(model, dc.get());
    const double width = box_.max.x - box_.min.x;
    const double height = box_.max.y - box_.min.y;
    double side = std::min(width, height);
    if (side == 0) side = std::max(width, height);
    hairline_ = HatchUnit({{}, {side, side, 0}});
    hatch_unit_ = HatchUnit(PictureBox(model, nullptr));
  }

  void Write(const SvgOptions& options, const std::filesystem::path& name) {
    xml_.Declaration();
    Heading(name);
    xml_.Begin("svg");
    const ViewBox view = View();
    std::string* out = xml_.BeginAttribute("viewBox");
    for (const double value : {view.left, view.top, view.width, view.height}) {
      if (out->back() != '"') out->push_back(' ');
      AppendSvgNumber(out, value, digits_);
    }
    xml_.EndAttribute();
    xml_.Attribute("xmlns", std::string_view("http://www.w3.org/2000/svg"));
    if (options.millimetres) {
      Millimetres("width", view.width);
      Millimetres("height", view.height);
    }
    Fills();
    Pens();
    xml_.End();
  }

  const PictureNotes& notes() const { return notes_; }

 private:
  ViewBox View() const;
  void Millimetres(std::string_view attribute, double value);
  void Heading(const std::filesystem::path& name);
  void PenComment(const PenKey& pen, const PartsElement& part);
  void Fills();
  void Faces(const Parts& part, const PartsElement& owner);
  void Hatch(const std::vector<const P3*>& loop, const PartsElement& owner);
  void Pens();
  void Outlines(const Parts& part, const PartsElement& owner);
  void Lines(const Parts& part);
  void Chain(std::vector<const P3*>* chain);
  void Circles(const Parts& part);
  void Points(const Parts& part, const PointA& sets);
  void Texts(const Parts& part, const PartsElement& owner);
  const P3* Shown(const Parts& part, int32_t index);
  double LineWidth(const PenKey& pen) const { return pen.width > 0 ? pen.width : hairline_; }

  const PartsA& model_;
  XmlOut& xml_;
  int digits_;
  SvgElements shapes_;
  Extent3 box_;
  double hairline_ = 1;  // width of a pen of width 0: a thousandth of the drawing, or so
  double hatch_unit_ = 1;
  int clip_paths_ = 0;
  PictureNotes notes_;
};

ViewBox SvgDrawing::View() const {
  bool any_hairline = false;
  for (const PartsElement& part : model_.parts) {
    any_hairline |= KeyOf(part).width == 0 && HasOutlines(part);
  }
  const double around = any_hairline ? hairline_ / 2 : 0;
  ViewBox view = {box_.min.x - around, 0.0 - box_.max.y - around,
                  box_.max.x - box_.min.x + 2 * around, box_.max.y - box_.min.y + 2 * around};
  // Readers refuse a box of no size, and what is written of one must not vanish either.
  const double least = std::pow(10, 3 - digits_);
  for (double* side : {&view.width, &view.height}) {
    if (!(*side > 0)) *side = hairline_;
    *side = std::max(*side, least);
  }
  return view;
}

void SvgDrawing::Millimetres(std::string_view attribute, double value) {
  std::string* out = xml_.BeginAttribute(attribute);
  AppendSvgNumber(out, value, digits_);
  *out += "mm";
  xml_.EndAttribute();
}

void SvgDrawing::Heading(const std::filesystem::path& name) {
  const std::u16string size = WideNumber(box_.max.x - box_.min.x, digits_) + u"\t" +
                              WideNumber(box_.max.y - box_.min.y, digits_);
  std::string digits;
  AppendInteger(&digits, digits_);
  xml_.Comment(u"\r\n" + FileComment(u"SVG Exporter \t1.10\t") +      //
               u"Size         \t" + size +                            //
               u"\r\nSave         \t" + PathText(name.filename()) +   //
               u"\r\n変換精度\tSvgOut::Precision\t" + Wide(digits) +  //
               u"\r\nUNICODE \t" +                                    //
               u"\r\n大きさ補正\t1\t1\r\n");
}

void SvgDrawing::PenComment(const PenKey& pen, const PartsElement& part) {
  const auto whole = [](int64_t value) {
    std::string text;
    AppendInteger(&text, value);
    return Wide(text);
  };
  xml_.Comment(u" Layer  =" + pen.layer + u" PColor =" + Wide(SvgColor(pen.color)) + u" PStyle =" +
               whole(static_cast<int>(pen.style)) + u" PWidth =" + WideNumber(pen.width, digits_) +
               u" UWidth =" + WideNumber(pen.unit_width, digits_) + u" ULength=" +
               WideNumber(pen.unit_length, digits_) + u" HInt   =" + whole(part.brush.hatch) +
               u" ");
}

// The vertex of an index when a picture can show it; otherwise null, and counted.
const P3* SvgDrawing::Shown(const Parts& part, int32_t index) {
  const P3* p = VertexAt(part, index);
  if (p && IsPictured(*p)) return p;
  ++notes_.left_out;
  return nullptr;
}

void SvgDrawing::Fills() {
  const PartsElement* group = nullptr;  // whose brush the open group has
  const auto same_brush = [](const PartsElement& a, const PartsElement& b) {
    return a.brush.color == b.brush.color && FillOf(a.brush) == FillOf(b.brush);
  };
  for (const PartsElement& part : model_.parts) {
    const Fill fill = FillOf(part.brush);
    if (fill == Fill::kNone || !HasFaces(part)) continue;
    if (group && !same_brush(*group, part)) {
      xml_.End();
      group = nullptr;
    }
    if (!group) {
      const std::string color = SvgColor(static_cast<Color>(part.brush.color));
      const bool solid = fill == Fill::kSolid;
      group = &part;
      xml_.Begin("g");
      xml_.Attribute("stroke", std::string_view(solid ? "none" : color));
      if (!solid) shapes_.Number("stroke-width", hairline_);
      xml_.Attribute("fill", std::string_view(solid ? color : "none"));
      if (solid) xml_.Attribute("fill-rule", std::string_view("evenodd"));
    }
    Faces(part, part);
  }
  if (group) xml_.End();
}

void SvgDrawing::Faces(const Parts& part, const PartsElement& owner) {
  const bool hatched = FillOf(owner.brush) == Fill::kHatched;
  for (const FaceA& faces : part.faces) {
    for (const FaceItem& face : faces.items) {
      std::vector<const P3*> loop;
      bool whole = true;
      for (const int32_t index : face.vertices) {
        const P3* p = Shown(part, index);
        whole = whole && p;
        loop.push_back(p);
      }
      while (whole && loop.size() > 1 && *loop.front() == *loop.back()) loop.pop_back();
      if (!whole) continue;
      if (hatched) {
        Hatch(loop, owner);
      } else if (loop.size() >= 3) {
        shapes_.Points("polygon", loop);
      }
    }
  }
  if (part.child) Faces(*part.child, owner);
}

void SvgDrawing::Hatch(const std::vector<const P3*>& loop, const PartsElement& owner) {
  if (loop.empty()) {
    DumpText(u"SvgOut", u"SvgOut::DrawHatch\tpoints.GetCount()==0");
    return;
  }
  Extent3 box = {*loop[0], *loop[0]};
  for (const P3* p : loop) Include(&box, *p);
  std::string id = "Clip-Path-";
  AppendInteger(&id, ++clip_paths_);
  xml_.Begin("clipPath");
  xml_.Attribute("id", std::string_view(id));
  xml_.Attribute("clip-rule", std::string_view("evenodd"));
  shapes_.Points("polygon", loop);
  xml_.End();

  xml_.Begin("g");
  xml_.Attribute("clip-path", std::string_view("url(#" + id + ")"));
  const HatchFigures figures = HatchOver(owner.brush.hatch, box, hatch_unit_);
  for (const HatchLine& line : figures.lines) shapes_.Line(line.from, line.to);
  for (const bool filled : {false, true}) {
    if (std::ranges::none_of(figures.circles,
                             [&](const HatchCircle& c) { return c.filled == filled; }))
      continue;
    if (filled) {
      xml_.Begin("g");
      xml_.Attribute("fill", std::string_view(SvgColor(static_cast<Color>(owner.brush.color))));
      xml_.Attribute("stroke", std::string_view("none"));
    }
    for (const HatchCircle& circle : figures.circles) {
      if (circle.filled == filled) shapes_.Circle(circle.centre, circle.radius);
    }
    if (filled) xml_.End();
  }
  xml_.End();
}

void SvgDrawing::Pens() {
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
    xml_.Begin("g");
    xml_.Attribute("stroke", std::string_view(pen.style == PenStyle::kNull ? std::string("none")
                                                                           : SvgColor(pen.color)));
    shapes_.Number("stroke-width", LineWidth(pen));
    xml_.Attribute("stroke-linecap", std::string_view("round"));  // as the desktop's pens have them
    xml_.Attribute("stroke-linejoin", std::string_view("round"));
    xml_.Attribute("fill", std::string_view("none"));
    // Lengths are multiples of the line's width; a length of the pen's own is kept.
    const PenData data = {pen.style, pen.width / hairline_, pen.color, pen.unit_length / hairline_};
    const std::vector<double> dashes = DashLengths(data);
    if (!dashes.empty()) {
      std::string* out = xml_.BeginAttribute("stroke-dasharray");
      for (const double length : dashes) {
        if (out->back() != '"') out->push_back(' ');
        AppendSvgNumber(out, length * hairline_, digits_);
      }
      xml_.EndAttribute();
    }
    for (const PartsElement* part : group) Outlines(*part, *part);
    xml_.End();
  }
}

void SvgDrawing::Outlines(const Parts& part, const PartsElement& owner) {
  Lines(part);
  for (const EdgeItem& edge : part.edges.items) {
    const P3* from = Shown(part, edge.values[0]);
    const P3* to = from ? Shown(part, edge.values[1]) : nullptr;
    if (to) shapes_.Line({from->x, from->y}, {to->x, to->y});
  }
  Circles(part);
  Points(part, part.point_sets);
  Points(part, part.more_point_sets);
  Texts(part, owner);
  if (part.child) Outlines(*part.child, owner);
}

// Lines that chain are one path: a polygon where they come back to their first vertex, a polyline
// where they do not.
void SvgDrawing::Lines(const Parts& part) {
  std::vector<const P3*> chain;
  int32_t first = -1;
  int32_t last = -1;
  for (const LineItem& line : part.lines.items) {
    if (chain.empty() || line.start != last) {
      Chain(&chain);
      const P3* from = Shown(part, line.start);
      if (!from) continue;
      chain.push_back(from);
      first = line.start;
    }
    const P3* to = Shown(part, line.end);
    last = line.end;
    if (to && line.end == first && chain.size() >= 3) {
      shapes_.Points("polygon", chain);
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
void SvgDrawing::Chain(std::vector<const P3*>* chain) {
  if (chain->size() == 2) {
    shapes_.Line({(*chain)[0]->x, (*chain)[0]->y}, {(*chain)[1]->x, (*chain)[1]->y});
  } else if (chain->size() > 2) {
    shapes_.Points("polyline", *chain);
  }
  chain->clear();
}

void SvgDrawing::Circles(const Parts& part) {
  for (const CircleItem& circle : part.circles.items) {
    const CircleShape shape = ShapeOf(part, circle);
    const bool shown = shape.centre && IsPictured(*shape.centre) && IsPictured(circle.radius) &&
                       (!shape.start || (IsPictured(*shape.start) && IsPictured(*shape.end)));
    if (!shown) {
      ++notes_.left_out;
    } else if (shape.start) {
      shapes_.Arc(shape, std::fabs(circle.radius));
    } else {
      shapes_.Circle({shape.centre->x, shape.centre->y}, std::fabs(circle.radius));
    }
  }
}

void SvgDrawing::Points(const Parts& part, const PointA& sets) {
  const double arm = kPointArm * hairline_;
  for (const PointSet& set : sets.items) {
    for (const int32_t index : set.vertices) {
      const P3* p = Shown(part, index);
      if (!p) continue;
      shapes_.Line({p->x - arm, p->y}, {p->x + arm, p->y});
      shapes_.Line({p->x, p->y - arm}, {p->x, p->y + arm});
    }
  }
}

void SvgDrawing::Texts(const Parts& part, const PartsElement& owner) {
  for (const TextA* texts : {&part.texts, &part.more_texts}) {
    for (const TextItem& item : texts->items) {
      TextLine line;
      line.text = item.text;
      const P3* anchor = Shown(part, item.anchor);
      if (anchor) {
        shapes_.Text(*anchor, line, WritingDirection::kHorizontal, SvgColor(KeyOf(owner).color),
                     "none");
      }
    }
  }
  const std::string fill = FillOf(owner.brush) == Fill::kNone
                               ? std::string("none")
                               : SvgColor(static_cast<Color>(owner.brush.color));
  for (const TextLine& line : part.horizontal_texts.items) {
    const P3* anchor = Shown(part, line.anchor);
    if (anchor) shapes_.Text(*anchor, line, WritingDirection::kHorizontal, fill, "");
  }
  for (const TextLine& line : part.vertical_texts.items) {
    const P3* anchor = Shown(part, line.anchor);
    if (anchor) shapes_.Text(*anchor, line, WritingDirection::kVertical, fill, "");
  }
}

}  // namespace

Status WriteSvg(const PartsA& model, const SvgOptions& options, const std::filesystem::path& name,
                FileReplacement* out) {
  XmlOut xml(out);
  SvgDrawing drawing(model, &xml);
  drawing.Write(options, name);
  Status status = xml.Finish();
  if (status.ok()) TellLeftOut(drawing.notes(), name);
  return status;
}

Status ExportSvg(const PartsA& model, const std::filesystem::path& file,
                 const SvgOptions& options) {
  Status status;
  const auto out = FileReplacement::Create(file, &status);
  if (!out) return status;
  status = WriteSvg(model, options, file, out.get());
  return status.ok() ? out->Commit() : status;
}

}  // namespace kerno
