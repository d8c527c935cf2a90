#include "parts/shapes.h"

#include <cmath>
#include <numbers>
#include <vector>

#include "base/stop.h"

namespace kerno {
namespace {

double DirectionDegrees(const P3& centre, const P3& p) {
  const double degrees = std::atan2(p.y - centre.y, p.x - centre.x) * 180 / std::numbers::pi;
  return degrees < 0 ? degrees + 360 : degrees + 0.0;  // never -0
}

class Visitor {
 public:
  Visitor(ShapeOrder order, const VertexRule& rule, ShapeSink* sink)
      : order_(order), rule_(rule), sink_(*sink) {}

  void Visit(const PartsElement& part) {
    sink_.BeginPart(part);
    VisitGeometry(part);
  }
  size_t left_out() const { return left_out_; }

 private:
  void VisitGeometry(const Parts& part) {
    pool_ = part.vertices.points();
    sink_.BeginPool(pool_);
    if (order_ == ShapeOrder::kModel) {
      InModelOrder(part);
    } else {
      InPaintingOrder(part);
    }
    if (part.child) VisitGeometry(*part.child);
  }

  void InModelOrder(const Parts& part) {
    PlainTexts(part.texts);
    Lines(part.lines);
    Circles(part.circles);
    Faces(part.faces);
    Edges(part.edges);
    Points(part.point_sets);
    PlainTexts(part.more_texts);
    SetTexts(part.horizontal_texts, WritingDirection::kHorizontal);
    SetTexts(part.vertical_texts, WritingDirection::kVertical);
    Points(part.more_point_sets);
  }

  void InPaintingOrder(const Parts& part) {
    if (order_ != ShapeOrder::kAllButFaces) Faces(part.faces);
    if (order_ == ShapeOrder::kFaces) return;
    Lines(part.lines);
    Edges(part.edges);
    Circles(part.circles);
    Points(part.point_sets);
    Points(part.more_point_sets);
    PlainTexts(part.texts);
    PlainTexts(part.more_texts);
    SetTexts(part.horizontal_texts, WritingDirection::kHorizontal);
    SetTexts(part.vertical_texts, WritingDirection::kVertical);
  }

  bool Holds(int32_t index) const {
    return index >= 0 && static_cast<size_t>(index) < pool_.size() && rule_.Takes(At(index));
  }
  const P3& At(int32_t index) const { return pool_[static_cast<size_t>(index)]; }
  // Whether the element may be shown; otherwise it is counted.
  bool Counts(bool can_be_shown) {
    stop_.Step();
    if (!can_be_shown) ++left_out_;
    return can_be_shown;
  }

  void Lines(const LineA& lines) {
    for (const LineItem& line : lines.items) {
      const bool goes_on = !chain_.empty() && chain_.back() == line.start;
      if (!goes_on) EndChain();
      if (!Counts((goes_on || Holds(line.start)) && Holds(line.end))) {
        EndChain();
        continue;
      }
      if (!goes_on) chain_.push_back(line.start);
      chain_.push_back(line.end);
    }
    EndChain();
  }
  void EndChain() {
    if (!chain_.empty()) sink_.Polyline({pool_, chain_});
    chain_.clear();
  }

  void Edges(const EdgeA& edges) {
    for (const EdgeItem& edge : edges.items) {
      const int32_t ends[] = {edge.start, edge.end};
      if (Counts(Holds(edge.start) && Holds(edge.end))) {
        sink_.Polyline({pool_, ends});
      }
    }
  }

  void Faces(std::span<const FaceA> arrays) {
    for (const FaceA& faces : arrays) {
      for (const FaceItem& face : faces.items) Face(face.vertices);
    }
  }

  void Face(std::span<const int32_t> loop) {
    bool whole = true;
    for (const int32_t index : loop) whole = whole && Holds(index);
    if (Counts(whole)) sink_.Face({pool_, loop});
  }

  // The element is an arc when both further vertices differ from -1 and from each other.
  void Circles(const CircleA& circles) {
    for (const CircleItem& circle : circles.items) {
      const bool is_arc =
          circle.first != -1 && circle.second != -1 && circle.first != circle.second;
      const bool can_be_shown = Holds(circle.centre) && rule_.Takes(circle.radius) &&
                                (!is_arc || (Holds(circle.first) && Holds(circle.second)));
      if (!Counts(can_be_shown)) continue;
      const P3& centre = At(circle.centre);
      if (!is_arc) {
        sink_.Circle({centre, circle.radius});
        continue;
      }
      const P3& start = At(circle.first);
      const P3& end = At(circle.second);
      sink_.Arc({centre, circle.radius, start, end, DirectionDegrees(centre, start),
                 DirectionDegrees(centre, end)});
    }
  }

  void PlainTexts(const TextA& texts) {
    for (const TextItem& text : texts.items) {
      if (Counts(Holds(text.anchor))) sink_.PlainText(At(text.anchor), text.text);
    }
  }

  void SetTexts(const ElementArray<TextLine>& texts, WritingDirection direction) {
    for (const TextLine& line : texts.items) {
      if (Counts(Holds(line.anchor))) sink_.SetText(At(line.anchor), line, direction);
    }
  }

  void Points(const PointA& sets) {
    for (const PointSet& set : sets.items) {
      held_.clear();
      for (const int32_t index : set.vertices) {
        if (Counts(Holds(index))) held_.push_back(index);
      }
      sink_.Points({pool_, held_});
    }
  }

  ShapeOrder order_;
  VertexRule rule_;
  ShapeSink& sink_;
  std::span<const P3> pool_;
  std::vector<int32_t> chain_;  // of lines, as far as it goes
  std::vector<int32_t> held_;   // the points of a set that can be shown
  size_t left_out_ = 0;
  StopNowAndThen stop_;
};

}  // namespace

Vertices OpenLoop(Vertices loop) {
  while (loop.size() > 1 && loop[loop.size() - 1] == loop[0]) loop = loop.Part(0, loop.size() - 1);
  return loop;
}

size_t VisitShapes(const PartsA& model, ShapeOrder order, const VertexRule& rule, ShapeSink* sink) {
  Visitor visitor(order, rule, sink);
  for (const PartsElement& part : PartsView(model)) visitor.Visit(part);
  return visitor.left_out();
}

size_t VisitShapes(const PartsElement& part, ShapeOrder order, const VertexRule& rule,
                   ShapeSink* sink) {
  Visitor visitor(order, rule, sink);
  visitor.Visit(part);
  return visitor.left_out();
}

ElementCounts CountElements(const Parts& part) {
  ElementCounts counts;
  counts.outlines = part.lines.items.size() + part.edges.items.size() + part.circles.items.size();
  for (const FaceA& faces : part.faces) counts.faces += faces.items.size();
  counts.texts = part.texts.items.size() + part.more_texts.items.size() +
                 part.horizontal_texts.items.size() + part.vertical_texts.items.size();
  counts.point_sets = part.point_sets.items.size() + part.more_point_sets.items.size();
  if (part.child) {
    const ElementCounts of_child = CountElements(*part.child);
    counts.outlines += of_child.outlines;
    counts.faces += of_child.faces;
    counts.texts += of_child.texts;
    counts.point_sets += of_child.point_sets;
  }
  return counts;
}

}  // namespace kerno
