#include "drawing/fit_arcs.h"

#include <algorithm>

#include "base/stop.h"
#include "drawing/measures.h"
#include "drawing/smooth_stretches.h"
#include "drawing/tangent_arcs.h"

namespace kerno {
namespace {

// The tangent of half of 0.9 degrees: what arcs may turn at once, safely below a degree.
constexpr double kMostTurn = 0.00785;
// The cosine of 0.9 degrees.
constexpr double kSmallTurn = 0.99987663;
// How far an arc may arrive beside the stretch's direction, in turns; the next one takes it back.
constexpr double kTurnsAstray = 2;
// Sizes at which a letter keeps its shape, as shares of the path's box.
constexpr double kCoarsest = 0.05;
// A turn within less than this share of the tolerance is a corner.
constexpr double kPointShare = 1.0 / 1024;
// An arc is at most half a circle.
constexpr double kMostBulge = 1;

Segment ArcTo(const P2& end, double bulge) {
  Segment segment;
  segment.kind = bulge == 0 ? SegmentKind::kLine : SegmentKind::kArc;
  segment.end = end;
  segment.bulge = bulge;
  return segment;
}

// Where arcs meet without a corner they turn by less than a degree, or do so within a stretch only,
// or nowhere.
enum class Joints { kNearlyTangent, kTangentAtEnds, kTangent };

// Fits the curved stretches of a path. A place on a stretch is the number of a piece, counted from
// the stretch's first one, and the parameter there, added up.
class ArcFitter {
 public:
  ArcFitter(const SmoothStretches& path, double tolerance, Joints joints,
            std::vector<Segment>* segments)
      : pieces_(path.pieces),
        tolerance_(tolerance),
        turn_at_ends_(joints == Joints::kNearlyTangent ? kMostTurn : 0),
        least_arcs_(joints == Joints::kTangent ? 2 : 1),
        segments_(*segments) {
    curves_.reserve(pieces_.size());
    for (const Piece& piece : pieces_) curves_.push_back(PolynomialOf(piece));
  }

  // Appends lines and arcs from the stretch's start to its end. Takes, again and again, the arc
  // that reaches farthest, or two arcs of one tangent where these reach more than twice as far or
  // where nothing else is tangent.
  void Fit(const Stretch& stretch) {
    stretch_ = stretch;
    end_ = static_cast<double>(stretch.end - stretch.begin);
    from_ = 0;
    heading_ = stretch.first;
    arrived_ = heading_.direction;
    double step = end_;
    while (from_ < end_) {
      FindFarthest(least_arcs_, step);
      if (least_arcs_ == 1 && (!best_.found || best_.to < end_)) TryTwoArcs();
      if (!best_.found) TakeChord();
      step = best_.to - from_;
      Append();
    }
  }

 private:
  // One or two arcs to a place.
  struct Attempt {
    bool found = false;
    double to = 0;
    Heading heading;  // of the stretch there
    Segment first, second;
    bool is_pair = false;
  };

  Heading HeadingAt(double place) const {
    if (place == 0) return stretch_.first;
    if (place == end_) return stretch_.last;
    const auto number = static_cast<size_t>(place);
    const double t = place - static_cast<double>(number);
    const Piece& piece = pieces_[stretch_.begin + number];
    if (t > 0) return {PointAt(piece, t), DirectionAt(piece, t)};
    return {piece.start,
            Unit(DirectionAt(pieces_[stretch_.begin + number - 1], 1) + DirectionAt(piece, 0))};
  }

  // At least the farthest distance of part of the stretch from an arc; any value above the
  // tolerance, once that is passed.
  double Stray(double from, double to, const P2& start, const P2& end, double bulge) const {
    double most = 0;
    for (double at = from; at < to && most <= tolerance_;) {
      const auto number = static_cast<size_t>(at);
      const auto base = static_cast<double>(number);
      const double next = std::min(to, base + 1);
      const Polynomial part = PartOf(curves_[stretch_.begin + number], at - base, next - base);
      most = std::max(most, StrayFromArc(part, start, end, bulge, tolerance_));
      at = next;
    }
    return most;
  }

  // Where the stretch, from from_ to `to`, crosses the line across a heading.
  double CrossingOf(double to, const Heading& line) const {
    const auto ahead = [&](double place) {
      const size_t last = stretch_.end - stretch_.begin - 1;
      const size_t number = std::min(static_cast<size_t>(place), last);
      const double t = place - static_cast<double>(number);
      return Dot(PointAt(curves_[stretch_.begin + number], t) - line.at, line.direction);
    };
    double low = from_, high = to;
    double low_ahead = Dot(heading_.at - line.at, line.direction), high_ahead = ahead(to);
    constexpr int kRounds = 12;
    constexpr double kClose = 1e-6;
    double at = 0.5 * (low + high);
    for (int i = 0; i < kRounds && high - low > kClose; ++i) {
      // Where a straight line would cross, and now and then in the middle.
      at = 0.5 * (low + high);
      if (i % 3 != 2 && low_ahead < 0 && high_ahead > 0) {
        at = low + (high - low) * (low_ahead / (low_ahead - high_ahead));
      }
      const double found = ahead(at);
      if (std::fabs(found) < tolerance_ * kClose) break;
      if (found < 0) {
        low = at, low_ahead = found;
      } else {
        high = at, high_ahead = found;
      }
    }
    return at;
  }

  // The bulges with which an arc to a place goes on from the arc before, and so that another one
  // can go on from it. False when there are none.
  bool BulgesTo(double to, const Heading& end, const EndAngles& angles, double* least,
                double* most) const {
    *least = -kMostBulge;
    *most = kMostBulge;
    const double at_ends = stretch_.is_loop ? 0.5 * turn_at_ends_ : turn_at_ends_;
    if (from_ > 0 || !stretch_.starts_at_corner) {
      EndAngles before;
      if (!AnglesBetween({heading_.at, arrived_}, end, &before)) return false;
      const double turn = from_ > 0 ? kMostTurn : at_ends;
      *least = std::max(*least, -before.leaving - turn);
      *most = std::min(*most, -before.leaving + turn);
    }
    if (to < end_ || !stretch_.ends_at_corner) {
      const double turn = to < end_ ? kTurnsAstray * kMostTurn : at_ends;
      *least = std::max(*least, angles.arriving - turn);
      *most = std::min(*most, angles.arriving + turn);
    }
    return *least <= *most;
  }

  bool OneArc(double to, const Heading& end, const EndAngles& angles, double* stray) {
    double least, most;
    if (!BulgesTo(to, end, angles, &least, &most)) return false;
    const auto fits = [&](double bulge) {
      *stray = Stray(from_, to, heading_.at, end.at, bulge);
      return *stray <= tolerance_;
    };
    double bulge = EvenBulge(angles);
    const bool is_flat = std::fabs(bulge) * Length(end.at - heading_.at) < 4 * tolerance_;
    if (is_flat && least <= 0 && 0 <= most && fits(0)) {
      bulge = 0;
    } else {
      bulge = std::clamp(bulge, least, most);
      if (!fits(bulge)) return false;
    }
    best_ = {true, to, end, ArcTo(end.at, bulge), {}};
    return true;
  }

  bool TwoArcs(double to, const Heading& end, double* stray) {
    // A turn that is too large for a joint is not taken back at once.
    const bool astray = from_ > 0 && Dot(arrived_, heading_.direction) < kSmallTurn;
    const Heading from = {heading_.at, astray ? arrived_ : heading_.direction};
    EndAngles angles;
    if (!AnglesBetween(from, end, &angles)) return false;
    const TangentArcs arcs = ArcsBetween(from, end, angles);
    if (!(std::fabs(arcs.first_bulge) <= kMostBulge) ||
        !(std::fabs(arcs.second_bulge) <= kMostBulge)) {
      return false;
    }
    const double joint = CrossingOf(to, arcs.joint);
    *stray = Stray(from_, joint, from.at, arcs.joint.at, arcs.first_bulge);
    if (*stray > tolerance_) return false;
    *stray = std::max(*stray, Stray(joint, to, arcs.joint.at, end.at, arcs.second_bulge));
    if (*stray > tolerance_) return false;
    best_ = {
        true, to, end, ArcTo(arcs.joint.at, arcs.first_bulge), ArcTo(end.at, arcs.second_bulge),
        true};
    return true;
  }

  // Goes to a place by so many arcs; best_ becomes them where they fit. `stray` tells how far they
  // are from the stretch: infinitely, where directions forbid them.
  bool Reach(int arcs, double to, double* stray) {
    const Heading end = HeadingAt(to);
    EndAngles angles;
    *stray = HUGE_VAL;
    if (arcs == 2) return TwoArcs(to, end, stray);
    return AnglesBetween(heading_, end, &angles) && OneArc(to, end, angles, stray);
  }

  // Goes as far as so many arcs reach, about; `step` is a first guess. best_ is not found when they
  // reach nowhere.
  void FindFarthest(int arcs, double step) {
    best_ = {};
    const double rest = end_ - from_;
    double good = 0, bad = HUGE_VAL;
    constexpr int kGuesses = 24, kGuessesOnceFound = 4;
    constexpr double kNear = 0.92;
    for (int guess = 0; guess < kGuesses; ++guess) {
      step = std::min(step, rest);
      double stray = 0;
      (Reach(arcs, step == rest ? end_ : from_ + step, &stray) ? good : bad) = step;
      if (good == rest || good > bad * kNear) return;
      if (good > 0 && guess >= kGuessesOnceFound) return;
      // The distance grows about with the third power of the step, and is not known exactly where
      // the search for it ended early.
      const double factor = std::clamp(SquareRoot(SquareRoot(tolerance_ / stray)), 0.25, 2.5);
      const double next = step * factor * 0.98;
      const bool between = next > good * 1.02 && next < bad * 0.98;
      step = between ? next : 0.5 * (good + std::min(bad, 3 * step));
    }
  }

  // Puts two arcs in place of the one in best_ where they reach farther than it and half of
  // another.
  void TryTwoArcs() {
    constexpr double kWorthIt = 2.5;
    const Attempt one = best_;
    if (!one.found) return FindFarthest(2, end_ - from_);
    const double step = kWorthIt * (one.to - from_);
    double stray = 0;
    if (from_ + step >= end_ || !Reach(2, from_ + step, &stray)) return;
    FindFarthest(2, step);
    if (!best_.found) best_ = one;
  }

  // A step without arcs, where the curve is none.
  void TakeChord() {
    constexpr double kStep = 1.0 / 64;
    const double to = std::min(end_, from_ + kStep);
    const Heading end = HeadingAt(to);
    best_ = {true, to, end, ArcTo(end.at, 0), {}};
  }

  void Append() {
    P2 start = heading_.at;
    segments_.push_back(best_.first);
    if (best_.is_pair) {
      start = best_.first.end;
      segments_.push_back(best_.second);
    }
    arrived_ = DirectionAt({start, segments_.back()}, 1);
    from_ = best_.to;
    heading_ = best_.heading;
  }

  const std::vector<Piece>& pieces_;
  std::vector<Polynomial> curves_;  // of the pieces
  double tolerance_;
  double turn_at_ends_;  // the tangent of half the most that arcs turn where stretches meet
  int least_arcs_;       // at a time
  std::vector<Segment>& segments_;

  Stretch stretch_;  // at work
  double end_ = 0;   // its last place
  double from_ = 0;  // how far it is done
  Heading heading_;  // of the stretch there
  P2 arrived_;       // the direction of the last arc there
  Attempt best_;
};

Path Fitted(const Path& path, double tolerance, StretchRule rule, Joints joints) {
  Path result;
  result.closed = path.closed;
  result.start = path.start;
  const Box2 box = BoxOf(path);
  tolerance = std::min(tolerance, std::max(box.Width(), box.Height()) * kCoarsest);
  const SmoothStretches smooth = StretchesOf(path, tolerance * kPointShare, rule);
  if (smooth.pieces.empty()) return result;
  result.start = smooth.stretches.front().first.at;  // a corner may lie before the first piece
  ArcFitter fitter(smooth, tolerance, joints, &result.segments);
  for (const Stretch& stretch : smooth.stretches) {
    StopIfAsked();
    if (stretch.curved) {
      fitter.Fit(stretch);
    } else {
      result.segments.push_back(smooth.pieces[stretch.begin].segment);
    }
  }
  return result;
}

}  // namespace

Path FitArcs(const Path& path, double tolerance) {
  return Fitted(path, tolerance, StretchRule::kSmooth, Joints::kNearlyTangent);
}

Path FitArcsKeepingNodes(const Path& path, double tolerance) {
  return Fitted(path, tolerance, StretchRule::kCurve, Joints::kTangentAtEnds);
}

Path FitTangentArcs(const Path& path, double tolerance) {
  return Fitted(path, tolerance, StretchRule::kSmooth, Joints::kTangent);
}

}  // namespace kerno
