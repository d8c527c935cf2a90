#include "drawing/tangent_arcs.h"

#include <algorithm>
#include <array>

namespace kerno {
namespace {

// The tangents of the sum and the difference of two angles, and of half an angle.
double Sum(double a, double b) {
  return (a + b) / (1 - a * b);
}
double Difference(double a, double b) {
  return (a - b) / (1 + a * b);
}
double Halved(double a) {
  return a / (1 + SquareRoot(1 + a * a));
}

// How far a curve of some degree is outside a circle, as a polynomial of its parameter: the
// circle's equation times its curvature, so that a straight arc is nothing special. The circle goes
// through
// (-1, 0) and (1, 0).
template <size_t kDegree>
class CircleGap {
 public:
  CircleGap(const std::array<P2, 4>& curve, double bulge) : curve_(curve), bulge_(bulge) {
    const double below = 1 - bulge * bulge;
    for (size_t i = 0; i <= kDegree; ++i) {
      terms_[2 * i] += 2 * bulge * Dot(curve[i], curve[i]);
      for (size_t j = 0; j < i; ++j) terms_[i + j] += 4 * bulge * Dot(curve[i], curve[j]);
    }
    for (size_t i = 0; i <= kDegree; ++i) terms_[i] -= 2 * below * curve[i].y;
    terms_[0] -= 2 * bulge;
  }

  double At(double t) const {
    double sum = terms_[2 * kDegree];
    for (size_t i = 2 * kDegree; i-- > 0;) sum = sum * t + terms_[i];
    return sum;
  }

  bool GoesAlongAt(double t) const {
    P2 p = curve_[kDegree], velocity = {};
    for (size_t i = kDegree; i-- > 0;) {
      velocity = velocity * t + p;
      p = p * t + curve_[i];
    }
    const P2 radial = {2 * bulge_ * p.x, 2 * bulge_ * p.y - (1 - bulge_ * bulge_)};
    return Cross(radial, velocity) >= 0;
  }

  // At least the largest second derivative: the largest control value of that polynomial.
  double MostBend() const {
    constexpr size_t kBend = 2 * kDegree - 2;
    // To control values, from powers.
    constexpr double kOfFour[5][5] = {{1, 0, 0, 0, 0},
                                      {1, 0.25, 0, 0, 0},
                                      {1, 0.5, 1.0 / 6, 0, 0},
                                      {1, 0.75, 0.5, 0.25, 0},
                                      {1, 1, 1, 1, 1}};
    constexpr double kOfTwo[3][3] = {{1, 0, 0}, {1, 0.5, 0}, {1, 1, 1}};
    double most = 0;
    for (size_t row = 0; row <= kBend; ++row) {
      double control = 0;
      for (size_t i = 0; i <= row; ++i) {
        double share = 0;
        if constexpr (kBend == 4) {
          share = kOfFour[row][i];
        } else {
          share = kOfTwo[row][i];
        }
        control += share * terms_[i + 2] * static_cast<double>((i + 2) * (i + 1));
      }
      most = std::max(most, std::fabs(control));
    }
    return most;
  }

  // At least the farthest that the curve is from the circle, in the circle's equation; infinite
  // where it runs against the circle.
  double Most() const {
    constexpr int kSteps = 8;
    double most = std::fabs(At(0));
    for (int i = 1; i <= kSteps; ++i) most = std::max(most, std::fabs(At(i * (1.0 / kSteps))));
    for (int i = 1; i < kSteps; i += 2) {
      if (!GoesAlongAt(i * (1.0 / kSteps))) return HUGE_VAL;
    }
    // Between two of them, a polynomial leaves its chord by an eighth of its bend.
    return most + MostBend() * (0.125 / (kSteps * kSteps));
  }

 private:
  const std::array<P2, 4>& curve_;
  double bulge_;
  std::array<double, 2 * kDegree + 1> terms_ = {};
};

}  // namespace

bool AnglesBetween(const Heading& from, const Heading& to, EndAngles* angles) {
  constexpr double kLeastCosine = 0.1;
  const P2 along = Unit(to.at - from.at);
  const double leaving = Dot(along, from.direction), arriving = Dot(along, to.direction);
  if (!(leaving > kLeastCosine && arriving > kLeastCosine)) return false;
  *angles = {Cross(along, from.direction) / (1 + leaving),
             Cross(along, to.direction) / (1 + arriving)};
  return true;
}

double EvenBulge(const EndAngles& angles) {
  return -Halved(Difference(angles.leaving, angles.arriving));
}

double HalfMiss(const EndAngles& angles) {
  return Halved(Sum(angles.leaving, angles.arriving));
}

TangentArcs ArcsBetween(const Heading& from, const Heading& to, const EndAngles& angles) {
  TangentArcs arcs;
  // Arcs of one tangent meet on a circle through both ends; here, in its middle.
  const P2 half = (to.at - from.at) * 0.5;
  arcs.joint.at = from.at + half - TurnedLeft(half) * EvenBulge(angles);
  const P2 first = Unit(arcs.joint.at - from.at), second = Unit(to.at - arcs.joint.at);
  const double along = Dot(first, from.direction);
  arcs.first_bulge = -Cross(first, from.direction) / (1 + along);
  arcs.second_bulge = Cross(second, to.direction) / (1 + Dot(second, to.direction));
  arcs.joint.direction = first * (2 * along) - from.direction;
  return arcs;
}

double StrayFromArc(const Polynomial& curve, const P2& from, const P2& to, double bulge,
                    double limit) {
  // In the frame of the chord, which runs from (-1, 0) to (1, 0) there.
  const P2 half_chord = (to - from) * 0.5;
  const double square = Dot(half_chord, half_chord);
  if (!(square > 0)) return HUGE_VAL;
  const double scale = 1 / square;
  const auto turned = [&](const P2& v) {
    return P2{Dot(half_chord, v) * scale, Cross(half_chord, v) * scale};
  };
  const std::array<P2, 4> c = {turned(curve.at - Midpoint(from, to)), turned(curve.d1),
                               turned(curve.d2), turned(curve.d3)};
  const bool cubic = !(curve.d3 == P2{});
  const double most = cubic ? CircleGap<3>(c, bulge).Most() : CircleGap<2>(c, bulge).Most();
  const double half = SquareRoot(square);
  const double whole = 1 + bulge * bulge;
  return most * half / std::max(whole, 2 * whole - 2 * std::fabs(bulge) * limit / half);
}

}  // namespace kerno
