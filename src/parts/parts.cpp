#include "parts/parts.h"

#include <optional>

#include "base/copy_log.h"
#include "base/settings_table.h"

namespace kerno {
namespace {

constexpr size_t kMostVertices = 0x7FFFFFFF;

// Not among the known settings: no output of the program joins parts.
// Classic: "oprator" is spelled so in the files that users have.
constexpr SwitchSetting kUseMerge{
    u"Debug\\Parts", u"oprator+=...UseMerge", true,
    "1: joining a smaller part to a larger one lists the larger one's elements first"};
thread_local std::optional<bool> use_merge;  // read once

bool UseMerge() {
  if (!use_merge) use_merge = Get(kUseMerge);
  return *use_merge;
}

bool HasRoomFor(const P3A& pool, size_t points) {
  return points <= kMostVertices && pool.size() <= kMostVertices - points;
}

// Re-creates elements of one part in another, vertex by vertex.
class Appender {
 public:
  Appender(Parts* to, const Parts& from) : to_(to), from_(from) {}

  void AppendAll() {
    Each(&to_->texts, from_.texts, 5, [&](TextItem& e) { Move(&e.anchor); });
    Each(&to_->lines, from_.lines, 10, [&](LineItem& e) {
      Move(&e.start);
      Move(&e.end);
    });
    Each(&to_->circles, from_.circles, 10, [&](CircleItem& e) {
      Move(&e.centre);
      Move(&e.first);
      Move(&e.second);
    });
    for (size_t i = 0; i < to_->faces.size(); ++i) {
      Each(&to_->faces[i], from_.faces[i], 10, [&](FaceItem& e) { MoveAll(&e.vertices); });
    }
    Each(&to_->edges, from_.edges, 10, [&](EdgeItem& e) {
      Move(&e.start);
      Move(&e.end);
    });
    const auto move_set = [&](PointSet& e) { MoveAll(&e.vertices); };
    Each(&to_->point_sets, from_.point_sets, 10, move_set);
    Each(&to_->more_texts, from_.more_texts, 10, [&](TextItem& e) { Move(&e.anchor); });
    const auto move_line = [&](TextLine& e) { Move(&e.anchor); };
    Each(&to_->horizontal_texts, from_.horizontal_texts, 10, move_line);
    Each(&to_->vertical_texts, from_.vertical_texts, 10, move_line);
    Each(&to_->more_point_sets, from_.more_point_sets, 10, move_set);
    for (const P3& point : from_.more_vertices) to_->more_vertices.FindOrAddPoint(point);
  }

 private:
  // An index that names no vertex of the source (such as -1) is carried as it is.
  void Move(int32_t* index) {
    if (*index < 0 || static_cast<size_t>(*index) >= from_.vertices.size()) return;
    *index = to_->vertices.FindOrAddPoint(from_.vertices[static_cast<size_t>(*index)]);
  }
  void MoveAll(std::vector<int32_t>* indices) {
    for (int32_t& index : *indices) Move(&index);
  }

  template <class Array, class MoveVertices>
  static void Each(Array* to, const Array& from, size_t margin, const MoveVertices& move) {
    if (from.items.empty()) return;
    const size_t needed = to->items.size() + from.items.size();
    if (to->items.capacity() < needed) {
      to->items.reserve(std::max(needed + margin, to->items.capacity() * 2));
    }
    for (const auto& element : from.items) {
      to->items.push_back(element);
      move(to->items.back());
    }
  }

  Parts* to_;
  const Parts& from_;
};

}  // namespace

Parts::Parts(const Parts& other)
    : vertices(other.vertices),
      texts(other.texts),
      lines(other.lines),
      circles(other.circles),
      faces(other.faces),
      edges(other.edges),
      point_sets(other.point_sets),
      more_texts(other.more_texts),
      horizontal_texts(other.horizontal_texts),
      vertical_texts(other.vertical_texts),
      more_point_sets(other.more_point_sets),
      placement(other.placement),
      codes(other.codes),
      keeps_order(other.keeps_order),
      trailing(other.trailing),
      more_vertices(other.more_vertices),
      child(other.child ? std::make_unique<Parts>(*other.child) : nullptr) {}

PartsA::PartsA(const PartsA& other) : id(other.id), parts(other.parts), made(other.made) {
  LogModelCopy(u"PartsA(const PartsA&)", PartsView(other).size());
}

PartsA& PartsA::operator=(const PartsA& other) {
  LogModelCopy(u"PartsA::operator=", PartsView(other).size());
  id = other.id;
  parts = other.parts;
  made = other.made;
  return *this;
}

Parts& Parts::operator=(const Parts& other) {
  if (this != &other) *this = Parts(other);
  return *this;
}

bool Parts::AddText(const P3& anchor, std::u16string_view text) {
  if (!HasRoomFor(vertices, 1)) return false;
  texts.items.push_back({vertices.FindOrAddPoint(anchor), std::u16string(text)});
  return true;
}

bool Parts::AddLine(const P3& start, const P3& end) {
  if (!HasRoomFor(vertices, 2)) return false;
  const int32_t first = vertices.FindOrAddPoint(start);
  lines.items.push_back({first, vertices.FindOrAddPoint(end)});
  return true;
}

bool Parts::AddClosedLines(std::span<const P3> corners) {
  const size_t count = corners.size();
  if (count == 0 || !HasRoomFor(vertices, count)) return false;
  lines.items.reserve(lines.items.size() + count);
  if (vertices.FillWithChain(corners)) {
    const auto last = static_cast<int32_t>(count - 1);
    for (int32_t i = 0; i < last; ++i) lines.items.push_back({i, i + 1});
    lines.items.push_back({last, 0});
    return true;
  }
  for (size_t i = 0; i < count; ++i) AddLine(corners[i], corners[(i + 1) % count]);
  return true;
}

bool Parts::AddCircle(const P3& centre, double radius, int32_t attribute, const P3& first,
                      const P3& second) {
  if (!HasRoomFor(vertices, 3)) return false;
  CircleItem circle;
  circle.centre = vertices.FindOrAddPoint(centre);
  circle.radius = radius;
  circle.attribute = attribute;
  circle.first = vertices.FindOrAddPoint(first);
  circle.second = vertices.FindOrAddPoint(second);
  circles.items.push_back(circle);
  return true;
}

bool Parts::AddFace(std::span<const P3> loop, int32_t attribute) {
  if (loop.empty() || !HasRoomFor(vertices, loop.size())) return false;
  FaceItem face;
  face.attribute = attribute;
  face.vertices.reserve(loop.size());
  for (const P3& point : loop) face.vertices.push_back(vertices.FindOrAddPoint(point));
  faces[0].items.push_back(std::move(face));
  return true;
}

bool Parts::AddHorizontalText(const P3& anchor, const TextLine& line) {
  if (!HasRoomFor(vertices, 1)) return false;
  horizontal_texts.items.push_back(line);
  horizontal_texts.items.back().anchor = vertices.FindOrAddPoint(anchor);
  return true;
}

bool Parts::AddVerticalText(const P3& anchor, const TextLine& line) {
  if (!HasRoomFor(vertices, 1)) return false;
  vertical_texts.items.push_back(line);
  vertical_texts.items.back().anchor = vertices.FindOrAddPoint(anchor);
  return true;
}

bool Parts::AddPointSet(std::span<const P3> points, int32_t a, int32_t b, int32_t c) {
  if (!HasRoomFor(vertices, points.size())) return false;
  PointSet set{a, b, c, {}};
  for (const P3& point : points) set.vertices.push_back(vertices.FindOrAddPoint(point));
  point_sets.items.push_back(std::move(set));
  return true;
}

Parts& Parts::operator+=(const Parts& other) {
  if (this == &other) return *this += Parts(other);
  if (vertices.empty() && keeps_order == 0) return *this = other;
  if (keeps_order == 0 && vertices.size() < other.vertices.size() && UseMerge()) {
    Parts larger(other);
    Appender(&larger, *this).AppendAll();
    return *this = std::move(larger);
  }
  Appender(this, other).AppendAll();
  return *this;
}

Extent3 PartsA::Extent() const {
  Extent3 box = kEmptyExtent;
  for (const PartsElement& part : PartsView(*this)) {
    for (const P3& point : part.vertices) Include(&box, point);
  }
  return GatheredExtent(box);
}

PartsView::PartsView(const PartsA& model) : kept_(model.parts), made_(model.made.get()) {}

const PartsElement& PartsView::Made(size_t i) const {
  if (made_now_ != i) made_->Make(i, &part_);
  made_now_ = i;
  return part_;
}

std::u16string DefaultFaceName(WritingDirection direction) {
  return Get(direction == WritingDirection::kHorizontal ? kHorizontalFace : kVerticalFace);
}

void ForgetPartsSettings() {
  use_merge.reset();
  ResetVertexSearch();
}

}  // namespace kerno
