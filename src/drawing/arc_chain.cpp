#include "drawing/arc_chain.h"

#include <algorithm>
#include <cstddef>

namespace kerno {
namespace {

// More than the tangent of half a right angle: an arc is at most half a circle.
constexpr double kMostBulge = 1;
// Longer chains than the shortest one to a point are kept up to this, as they may end more
// smoothly.
constexpr int kSpareArcs = 1;
constexpr size_t kWaysToAPoint = 4;
constexpr int kFailuresBeforeGivingUp = 4;
// Leaves room for distances not growing quite evenly with the bulge.
constexpr double kCareful = 0.98;

struct Range {
  double low, high;

  bool Empty() const { return !(low <= high); }
  double Width() const { return high - low; }
  bool Holds(double value) const { return low <= value && value <= high; }
};

Range Common(const Range& a, const Range& b) {
  return {std::max(a.low, b.low), std::min(a.high, b.high)};
}

// Two points in the frame of the chord between them: the chord runs from (-1, 0) to (1, 0).
class ChordFrame {
 public:
  ChordFrame(const P2& from, const P2& to)
      : middle_(Midpoint(from, to)), half_(Length(to - from) * 0.5), along_(Unit(to - from)) {}

  double Half() const { return half_; }
  P2 Turn(const P2& direction) const { return {Dot(along_, direction), Cross(along_, direction)}; }
  P2 Place(const P2& p) const { return Turn(p - middle_) * (1 / half_); }

 private:
  P2 middle_;
  double half_;
  P2 along_;
};

// Where a point lies against the arc of a bulge through the chord's ends, in the chord's frame. The
// circle's equation is divided by its radius, so that a straight arc is nothing special.
struct Offset {
  double distance;   // from the circle; above 0 on its right
  double by_bulge;   // how the distance grows with the bulge
  double direction;  // cosine between the arc and `direction`, where the point is nearest
};

Offset OffsetFrom(double bulge, const P2& p, const P2& direction) {
  const double square = bulge * bulge;
  const double inner = p.x * p.x + p.y * p.y - 1;
  const P2 radial = {2 * bulge * p.x, 2 * bulge * p.y - (1 - square)};
  const double reach = Length(radial);
  const double scale = 1 / (reach + 1 + square);
  return {(2 * bulge * inner - 2 * p.y * (1 - square)) * scale,
          (2 * inner + 4 * p.y * bulge) * scale,
          reach > 0 ? Dot(TurnedLeft(radial), direction) / reach : 0};
}

// The bulge of the arc through a point of the chord's frame.
double BulgeThrough(const P2& p) {
  const double q = 1 - p.x * p.x - p.y * p.y;
  const double below = q + std::sqrt(q * q + 4 * p.y * p.y);
  return below > 0 ? std::clamp(-2 * p.y / below, -kMostBulge, kMostBulge) : 0;
}

// The tangent, against `direction`, of the angle at which an arc leaves the chord's start; at its
// end the bulge counts the other way. `direction` is in the chord's frame.
double SlopeOf(double bulge, const P2& direction) {
  const P2 leaving = {1 - bulge * bulge, -2 * bulge};
  const double along = Dot(direction, leaving);
  const double across = Cross(direction, leaving);
  constexpr double kSteep = 1e3;
  return along > 0 ? std::clamp(across / along, -kSteep, kSteep) : (across < 0 ? -kSteep : kSteep);
}

// The inverse: the bulge of the arc that leaves the chord's start with that slope.
double BulgeLeaving(double slope, const P2& direction) {
  const P2 leaving = direction + TurnedLeft(direction) * slope;
  const double below = Length(leaving) + leaving.x;
  constexpr double kBackwards = 1e9;
  return below > 0 ? -leaving.y / below : (leaving.y < 0 ? kBackwards : -kBackwards);
}

class Chain {
 public:
  Chain(const std::vector<CurvePoint>& points, double tolerance, double between, double joint_slope,
        const EndSlopes& ends)
      : points_(points),
        tolerance_(tolerance),
        between_(between),
        joint_slope_(joint_slope),
        ends_(ends),
        steps_(points.size()),
        ways_(points.size()) {
    for (size_t i = 1; i < points.size(); ++i) {
      const P2 step = points[i].at - points[i - 1].at;
      steps_[i] = Dot(step, step);
      steps_[i - 1] = std::max(steps_[i - 1], steps_[i]);
    }
  }

  std::optional<std::vector<Segment>> Find() {
    ways_[0].push_back({0, 0, 0, {0, 0}, {-ends_.first, ends_.first}});
    for (size_t from = 0; from + 1 < points_.size(); ++from) {
      if (!ways_[from].empty()) ExtendFrom(from);
    }
    if (ways_.back().empty()) return std::nullopt;
    return Collect();
  }

 private:
  // A way to a point: some number of arcs, of which the last one comes from another point.
  struct Way {
    int arcs;
    size_t from, way;  // the way to that point
    Range bulges;      // of the last arc
    Range next;        // slopes at which the next arc may leave
  };

  // The bulges with which an arc between two points stays within the tolerance of those between
  // them; nearly: the distance is taken to grow evenly with the bulge.
  Range BulgesBetween(size_t from, size_t to) const {
    const ChordFrame frame(points_[from].at, points_[to].at);
    constexpr Range kNone = {1, -1};
    if (!(frame.Half() > 0)) return kNone;
    if (to == from + 1) {
      const double limit = kCareful * (tolerance_ - between_) / frame.Half();
      return Common({-kMostBulge, kMostBulge}, {-limit, limit});
    }
    double bulge = BulgeThrough(frame.Place(points_[(from + to) / 2].at));
    for (int pass = 0; pass < 2; ++pass) {
      Range range = {-kMostBulge, kMostBulge};
      if (!Narrow(frame, from, to, bulge, &range)) return kNone;
      if (!range.Empty()) return range;
      bulge = std::clamp(0.5 * (range.low + range.high), -kMostBulge, kMostBulge);
    }
    return kNone;
  }

  bool Narrow(const ChordFrame& frame, size_t from, size_t to, double bulge, Range* range) const {
    constexpr double kFlat = 1e-9;
    constexpr double kLeastCosine = 0.3;
    for (size_t i = from + 1; i < to; ++i) {
      const Offset offset =
          OffsetFrom(bulge, frame.Place(points_[i].at), frame.Turn(points_[i].direction));
      const double limit = kCareful * LimitAt(i, frame, bulge) / frame.Half();
      if (limit < 0) return false;
      if (offset.direction < kLeastCosine) return false;
      if (std::fabs(offset.by_bulge) < kFlat) {
        if (std::fabs(offset.distance) > limit) return false;
        continue;
      }
      const double one = bulge + (limit - offset.distance) / offset.by_bulge;
      const double other = bulge - (limit + offset.distance) / offset.by_bulge;
      *range = Common(*range, {std::min(one, other), std::max(one, other)});
    }
    return true;
  }

  void ExtendFrom(size_t from) {
    int failures = 0;
    for (size_t to = from + 1; to < points_.size(); ++to) {
      if (!points_[to].may_join && to + 1 < points_.size()) continue;
      const Range bulges = BulgesBetween(from, to);
      if (bulges.Empty()) {
        if (++failures == kFailuresBeforeGivingUp) return;
        continue;
      }
      failures = 0;
      const ChordFrame frame(points_[from].at, points_[to].at);
      const P2 first = frame.Turn(points_[from].direction),
               last = frame.Turn(points_[to].direction);
      // So far round, slopes no longer tell directions apart.
      constexpr double kLeastCosine = -0.5;
      if (first.x < kLeastCosine || last.x < kLeastCosine) continue;
      for (size_t way = 0; way < ways_[from].size(); ++way) {
        AddWay(from, way, to, bulges, first, last);
      }
    }
  }

  void AddWay(size_t from, size_t way, size_t to, const Range& bulges, const P2& first,
              const P2& last) {
    const Way& before = ways_[from][way];
    // A larger bulge leaves more to the right and arrives more to the left.
    Range fit = Common(
        bulges, {BulgeLeaving(before.next.high, first), BulgeLeaving(before.next.low, first)});
    if (to + 1 == points_.size()) {
      fit = Common(fit, {-BulgeLeaving(-ends_.last, last), -BulgeLeaving(ends_.last, last)});
    }
    if (fit.Empty()) return;
    const Range arriving = {SlopeOf(-fit.low, last), SlopeOf(-fit.high, last)};
    Keep(&ways_[to], {before.arcs + 1,
                      from,
                      way,
                      fit,
                      {arriving.low - joint_slope_, arriving.high + joint_slope_}});
  }

  // Keeps a few ways: those of the fewest arcs, or nearly, that leave the next arc the most
  // freedom.
  static void Keep(std::vector<Way>* ways, const Way& way) {
    int fewest = way.arcs;
    for (const Way& other : *ways) fewest = std::min(fewest, other.arcs);
    if (way.arcs > fewest + kSpareArcs) return;
    std::erase_if(*ways, [&](const Way& other) { return other.arcs > fewest + kSpareArcs; });
    size_t alike = 0;
    Way* narrowest = nullptr;
    for (Way& other : *ways) {
      if (other.arcs != way.arcs) continue;
      if (other.next.low <= way.next.low && way.next.high <= other.next.high) return;
      ++alike;
      if (!narrowest || other.next.Width() < narrowest->next.Width()) narrowest = &other;
    }
    if (alike < kWaysToAPoint) {
      ways->push_back(way);
    } else if (way.next.Width() > narrowest->next.Width()) {
      *narrowest = way;
    }
  }

  std::optional<std::vector<Segment>> Collect() const {
    const Way* way = &ways_.back().front();
    for (const Way& other : ways_.back()) {
      if (other.arcs < way->arcs ||
          (other.arcs == way->arcs && other.bulges.Width() > way->bulges.Width())) {
        way = &other;
      }
    }
    std::vector<Segment> segments;
    size_t to = points_.size() - 1;
    double bulge = way->bulges.Holds(0) ? 0 : 0.5 * (way->bulges.low + way->bulges.high);
    while (to > 0) {
      segments.push_back(SegmentTo(to, bulge));
      const size_t from = way->from;
      if (!Fits(from, to, segments.back().bulge)) return std::nullopt;
      if (from == 0) break;
      const ChordFrame frame(points_[from].at, points_[to].at);
      const double leaving = SlopeOf(segments.back().bulge, frame.Turn(points_[from].direction));
      way = &ways_[from][way->way];
      bulge = BulgeArriving(*way, from, leaving);
      to = from;
    }
    std::reverse(segments.begin(), segments.end());
    return segments;
  }

  // The bulge of a way's last arc with which it goes over most smoothly into an arc of that slope;
  // 0 where a line will do.
  double BulgeArriving(const Way& way, size_t to, double slope) const {
    const ChordFrame frame(points_[way.from].at, points_[to].at);
    const P2 last = frame.Turn(points_[to].direction);
    const Range smooth = {-BulgeLeaving(slope - joint_slope_, last),
                          -BulgeLeaving(slope + joint_slope_, last)};
    if (Common(way.bulges, smooth).Holds(0)) return 0;
    return std::clamp(-BulgeLeaving(slope, last), way.bulges.low, way.bulges.high);
  }

  Segment SegmentTo(size_t to, double bulge) const {
    Segment segment;
    segment.kind = bulge == 0 ? SegmentKind::kLine : SegmentKind::kArc;
    segment.end = points_[to].at;
    segment.bulge = bulge;
    return segment;
  }

  // How far a point of the path may lie from an arc: so that next to it, up to the neighbouring
  // points, path and arc stay within the tolerance too, whichever way they stray from the chords
  // there.
  double LimitAt(size_t i, const ChordFrame& frame, double bulge) const {
    const double curvature = 2 * std::fabs(bulge) / ((1 + bulge * bulge) * frame.Half());
    return tolerance_ - between_ - steps_[i] * curvature * 0.125;
  }

  // Without the simplification of BulgesBetween.
  bool Fits(size_t from, size_t to, double bulge) const {
    const ChordFrame frame(points_[from].at, points_[to].at);
    for (size_t i = from + 1; i < to; ++i) {
      const Offset offset =
          OffsetFrom(bulge, frame.Place(points_[i].at), frame.Turn(points_[i].direction));
      if (std::fabs(offset.distance) * frame.Half() > LimitAt(i, frame, bulge)) return false;
    }
    return true;
  }

  const std::vector<CurvePoint>& points_;
  double tolerance_;
  double between_;
  double joint_slope_;
  EndSlopes ends_;
  std::vector<double> steps_;           // squares of the longer way to a neighbour
  std::vector<std::vector<Way>> ways_;  // to each point
};

}  // namespace

std::optional<std::vector<Segment>> ChainOfArcs(const std::vector<CurvePoint>& points,
                                                double tolerance, double between,
                                                double joint_slope, const EndSlopes& ends) {
  return Chain(points, tolerance, between, joint_slope, ends).Find();
}

}  // namespace kerno
