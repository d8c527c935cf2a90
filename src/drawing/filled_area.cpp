#include "drawing/filled_area.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "base/stop.h"

namespace kerno {
namespace {

// Chords that are no farther apart where they are looked at, in units of the grid, run together:
// coordinates are exact to less.
constexpr double kTogether = 1e-4;
// So far a rounded crossing lies off its chords.
constexpr double kRounding = 1;

// Where a chord meets another one.
struct Cut {
  size_t chord;
  double share;  // of the chord, before it
  P2 where;      // on the grid; the same for both chords
};

P2 Exactly(const GridPoint& p) {
  return {static_cast<double>(p.x), static_cast<double>(p.y)};
}

P2 Along(const Chord& chord) {
  return Exactly(chord.to) - Exactly(chord.from);
}

double ShareOf(const Chord& chord, const P2& p) {
  const P2 along = Along(chord);
  return std::clamp(Dot(p - Exactly(chord.from), along) / Dot(along, along), 0.0, 1.0);
}

bool IsOn(const Chord& chord, const GridPoint& p) {
  return Side(chord.from, chord.to, p) == 0 && BoxOf(chord).Overlaps({p, p});
}

// Sums up the parts of paths between their cuts.
class Parts {
 public:
  Parts(const ChordGrid& grid, const BoxTree& path_boxes, const UnionRule& rule)
      : grid_(grid), path_boxes_(path_boxes), rule_(rule) {}

  FilledArea Area(std::span<const ChordContact> contacts) {
    for (const ChordContact& contact : contacts) AddCuts(contact);
    std::ranges::sort(cuts_, [](const Cut& x, const Cut& y) {
      return x.chord != y.chord ? x.chord < y.chord : x.share < y.share;
    });
    for (auto cut = cuts_.begin(); cut != cuts_.end();) {
      const size_t path = grid_.Chords()[cut->chord].path;
      const auto first = cut;
      while (cut != cuts_.end() && cut->chord < grid_.ChordsBegin(path + 1)) ++cut;
      for (auto from = first; from != cut; ++from) {
        if (from + 1 != cut) {
          AddPart(*from, from[1], from[1].chord - from->chord);
        } else {
          const size_t chords = grid_.ChordsBegin(path + 1) - grid_.ChordsBegin(path);
          AddPart(*from, *first, chords + first->chord - from->chord);
        }
      }
    }
    return result_;
  }

 private:
  void AddCuts(const ChordContact& contact) {
    const Chord& a = grid_.Chords()[contact.a];
    const Chord& b = grid_.Chords()[contact.b];
    const auto add = [&](const P2& p) {
      cuts_.push_back({contact.a, ShareOf(a, p), p});
      cuts_.push_back({contact.b, ShareOf(b, p), p});
    };
    if (ContactOf(a, b) == Contact::kCross) {
      const auto from = static_cast<double>(Side(a.from, a.to, b.from));
      const auto to = static_cast<double>(Side(a.from, a.to, b.to));
      add(Exactly(b.from) + Along(b) * (from / (from - to)));
      return;
    }
    for (const GridPoint& p : {b.from, b.to}) {
      if (IsOn(a, p)) add(Exactly(p));
    }
    for (const GridPoint& p : {a.from, a.to}) {
      if (IsOn(b, p)) add(Exactly(p));
    }
  }

  // From one cut to the next, over the ends of so many chords. The longest stretch of a chord tells
  // what the sides are: it is the farthest from other crossings.
  void AddPart(const Cut& from, const Cut& to, size_t ends) {
    StopIfAsked();
    double twice = 0, length = 0, longest = -1;
    P2 at = from.where, middle;
    size_t chord = from.chord, measured = chord;
    for (size_t left = ends;; --left) {
      const P2 next = left == 0 ? to.where : Exactly(grid_.Chords()[chord].to);
      twice += Cross(at, next);
      const double stretch = Length(next - at);
      length += stretch;
      if (stretch > longest) {
        longest = stretch;
        measured = chord;
        middle = Midpoint(at, next);
      }
      if (left == 0) break;
      at = next;
      chord = grid_.ChordAfter(chord);
    }
    const double share = longest > 0 ? OutlineShare(measured, middle) : 0;
    result_.area += 0.5 * twice * share;
    result_.slack += kRounding * length;
  }

  bool IsFilled(int winding) const {
    return rule_.fill == FillRule::kNonZero ? winding != 0 : winding > 0;
  }

  // 1 at a point of a chord with the filled side on the left, -1 on the right, 0 with both alike;
  // chords that run together there share it.
  double OutlineShare(size_t own, const P2& p) const {
    const P2 along = Along(grid_.Chords()[own]);
    // Along a ray to the right, or upwards from a flat chord.
    const bool upwards = std::fabs(along.x) > std::fabs(along.y);
    const GridPoint low = {static_cast<int32_t>(std::floor(p.x)),
                           static_cast<int32_t>(std::floor(p.y))};
    const GridBox here = {{low.x - 1, low.y - 1}, {low.x + 2, low.y + 2}};
    GridBox ray = here;
    (upwards ? ray.max.y : ray.max.x) = GridBox::kMost;
    int beyond = rule_.around, together = 0;
    const auto count = [&](size_t i) {
      const Chord& c = grid_.Chords()[i];
      const bool from_behind = upwards ? c.from.x <= p.x : c.from.y <= p.y;
      const bool to_behind = upwards ? c.to.x <= p.x : c.to.y <= p.y;
      if (from_behind == to_behind) return;
      // Counter-clockwise around what lies before the crossing: up over a ray to the right, to the
      // left over one upwards.
      const int way = to_behind == upwards ? 1 : -1;
      const P2 line = Along(c);
      const double side = Cross(line, p - Exactly(c.from));
      if (i == own || std::fabs(side) <= kTogether * Length(line)) {
        together += way;
      } else if ((side > 0) == (way > 0)) {
        beyond += way;
      }
    };
    path_boxes_.ForEachNear(here, [&](size_t path) {
      grid_.Boxes().ForEachNear(ray, grid_.ChordsBegin(path), grid_.ChordsBegin(path + 1), count);
    });
    if (together == 0) return 0;
    const int step = (IsFilled(beyond + together) ? 1 : 0) - (IsFilled(beyond) ? 1 : 0);
    return static_cast<double>(step) / together;
  }

  const ChordGrid& grid_;
  const BoxTree& path_boxes_;
  const UnionRule& rule_;
  std::vector<Cut> cuts_;
  FilledArea result_;
};

}  // namespace

FilledAreas::FilledAreas(const ChordGrid& grid, const UnionRule& rule)
    : grid_(grid), rule_(rule), path_boxes_({}) {
  std::vector<GridBox> boxes;
  for (size_t i = 0; i < grid.PathCount(); ++i) boxes.push_back(grid.BoxOf(i));
  path_boxes_ = BoxTree(std::move(boxes));
}

FilledArea FilledAreas::Of(std::span<const ChordContact> contacts) const {
  return Parts(grid_, path_boxes_, rule_).Area(contacts);
}

double AreaOf(std::span<const Polygon> outlines) {
  double twice = 0;
  for (const Polygon& outline : outlines) {
    for (size_t i = 0; i < outline.size(); ++i) {
      twice += Cross(Exactly(outline[i]), Exactly(outline[i + 1 < outline.size() ? i + 1 : 0]));
    }
  }
  return 0.5 * twice;
}

}  // namespace kerno
