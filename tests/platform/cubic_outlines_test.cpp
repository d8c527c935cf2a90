// Cubic outlines against the curves that they stand for, evaluated densely.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <complex>
#include <random>
#include <vector>

#include "platform/posix/native_outline.h"
#include "support/font_probe.h"

namespace kerno {
namespace {

using test::FontProbe;
using Spot = std::complex<double>;
using Cubic = std::array<Spot, 4>;
using Polyline = std::vector<Spot>;

constexpr double kWanted = 1.0 / 16;

Polyline Dense(const Cubic& c) {
  Polyline line;
  for (int i = 0; i <= 400; ++i) {
    const double t = i / 400.0, u = 1 - t;
    line.push_back(u * u * u * c[0] + 3 * u * u * t * c[1] + 3 * u * t * t * c[2] +
                   t * t * t * c[3]);
  }
  return line;
}

// A spline record: control points with implied joints, and the end.
Polyline Dense(Spot start, const std::vector<Spot>& record) {
  Polyline line = {start};
  for (size_t i = 0; i + 1 < record.size(); ++i) {
    const bool last = i + 2 == record.size();
    const Spot end = last ? record[i + 1] : (record[i] + record[i + 1]) / 2.0;
    for (int step = 1; step <= 40; ++step) {
      const double t = step / 40.0, u = 1 - t;
      line.push_back(u * u * start + 2 * u * t * record[i] + t * t * end);
    }
    start = end;
  }
  return line;
}

double Distance(Spot p, Spot a, Spot b) {
  const double length = std::norm(b - a);
  const double along = ((p - a) * std::conj(b - a)).real();
  return std::abs(p - a - (length > 0 ? std::clamp(along / length, 0.0, 1.0) : 0) * (b - a));
}

// How far either line gets away from the other.
double Gap(const Polyline& a, const Polyline& b) {
  double farthest = 0;
  for (const auto& [line, other] : {std::pair{&a, &b}, {&b, &a}}) {
    for (const Spot p : *line) {
      double nearest = 1e9;
      for (size_t i = 0; i + 1 < other->size(); ++i) {
        nearest = std::min(nearest, Distance(p, (*other)[i], (*other)[i + 1]));
      }
      farthest = std::max(farthest, nearest);
    }
  }
  return farthest;
}

// Each cubic becomes a record of its own, so the ends of records reach a round letter's borders.
TEST(CubicOutlines, LettersOfACubicFaceFillTheirBox) {
  const FontProbe font(u"Tlwg Mono", 1000);
  for (const char32_t ch : std::u32string_view(U"O8&@gS๑")) {
    const test::ProbedGlyph glyph = font.Glyph(ch);
    ASSERT_TRUE(glyph.ok());
    int32_t left = INT32_MAX, right = INT32_MIN, bottom = INT32_MAX, top = INT32_MIN;
    for (const auto& contour : test::ReadNativeRecords(glyph.buffer)) {
      for (const auto& record : contour.records) {
        const auto [x, y] = record.points.back();
        left = std::min(left, x);
        right = std::max(right, x);
        bottom = std::min(bottom, y);
        top = std::max(top, y);
      }
    }
    EXPECT_NEAR((right - left) / 65536.0, glyph.metrics.gmBlackBoxX, 2) << uint32_t{ch};
    EXPECT_NEAR((top - bottom) / 65536.0, glyph.metrics.gmBlackBoxY, 2) << uint32_t{ch};
  }
}

TEST(CubicOutlines, AnyCubicStaysWithinTheTolerance) {
  std::mt19937 random(7);
  std::uniform_int_distribution<int> coordinate(-1000 * 64, 1000 * 64);
  std::vector<std::array<int, 8>> cases = {
      {0, 0, 64000, 64000, 0, 64000, 64000, 0},      // loop
      {0, 0, 64000, 64000, 0, 64000, 64000, 64000},  // near a cusp
      {0, 0, 64000, 0, -64000, 0, 0, 0},             // there and back on a line
      {5, 5, 5, 5, 5, 5, 5, 5},                      // a point
      {0, 0, 1, 1, 2, 1, 3, 0},
  };
  cases.resize(45);
  std::for_each(cases.begin() + 5, cases.end(), [&](std::array<int, 8>& c) {
    for (int& value : c) value = coordinate(random);
  });
  for (const auto& c : cases) {
    Outline outline{{}, {4}};
    Cubic cubic;
    for (size_t i = 0; i < 4; ++i) {
      const int x = c[2 * i], y = c[2 * i + 1];
      outline.points.push_back({x, y, i % 3 == 0 ? PointKind::kOn : PointKind::kCubic});
      cubic[i] = Spot(x, y) / 64.0;
    }
    std::vector<Spot> record;
    for (const OutlinePoint& p : CubicsToQuadratics(outline).points) {
      record.push_back(Spot(double(p.x), double(p.y)) / 64.0);
    }
    record.erase(record.begin());
    EXPECT_LE(Gap(Dense(cubic[0], record), Dense(cubic)), kWanted)
        << c[0] << " " << c[1] << " " << c[2] << " " << c[3];
  }
}

}  // namespace
}  // namespace kerno
