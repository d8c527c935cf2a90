#include "parts/face_triangles.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <numeric>
#include <random>
#include <string>

namespace kerno {
namespace {

using Points = std::vector<P3>;

std::vector<int32_t> WholeLoop(const Points& points) {
  std::vector<int32_t> loop(points.size());
  std::iota(loop.begin(), loop.end(), 0);
  return loop;
}

P3 Normal(const P3& a, const P3& b, const P3& c) {
  const P3 u = {b.x - a.x, b.y - a.y, b.z - a.z};
  const P3 v = {c.x - a.x, c.y - a.y, c.z - a.z};
  return {u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x};
}

double Length(const P3& v) {
  return std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
}

double AreaOf(const Points& points, const std::vector<std::array<int32_t, 3>>& triangles) {
  double area = 0;
  for (const auto& t : triangles) {
    area += Length(Normal(points[static_cast<size_t>(t[0])], points[static_cast<size_t>(t[1])],
                          points[static_cast<size_t>(t[2])])) /
            2;
  }
  return area;
}

double LoopArea(const Points& points) {
  P3 sum;
  for (size_t i = 2; i < points.size(); ++i) {
    const P3 n = Normal(points[0], points[i - 1], points[i]);
    sum = {sum.x + n.x, sum.y + n.y, sum.z + n.z};
  }
  return Length(sum) / 2;
}

// Whether a point lies in the loop (even-odd), for points of the plane z = 0.
bool Inside(const Points& loop, double x, double y) {
  bool inside = false;
  for (size_t i = 0; i < loop.size(); ++i) {
    const P3& a = loop[i];
    const P3& b = loop[(i + 1) % loop.size()];
    if ((a.y > y) == (b.y > y)) continue;
    if (x < a.x + (y - a.y) / (b.y - a.y) * (b.x - a.x)) inside = !inside;
  }
  return inside;
}

// The triangles tile the loop: the same area, and every triangle's middle lies inside.
void ExpectTiled(const Points& points, double area, const std::string& what) {
  const auto triangles = FaceTriangles(points, WholeLoop(points));
  EXPECT_NEAR(AreaOf(points, triangles), area, 1e-9 * area) << what;
  EXPECT_LE(triangles.size(), points.size() - 2) << what;
  for (const auto& t : triangles) {
    const P3& a = points[static_cast<size_t>(t[0])];
    const P3& b = points[static_cast<size_t>(t[1])];
    const P3& c = points[static_cast<size_t>(t[2])];
    if (Length(Normal(a, b, c)) < 1e-12 * area) continue;  // too thin to have a middle
    EXPECT_TRUE(Inside(points, (a.x + b.x + c.x) / 3, (a.y + b.y + c.y) / 3)) << what;
  }
}

TEST(FaceTriangles, TileLoopsOfEveryShapeInBothDirections) {
  const struct {
    const char* what;
    Points points;
    double area;
  } cases[] = {
      {"triangle", {{0, 0}, {4, 0}, {0, 3}}, 6},
      {"square with closing point", {{0, 0}, {2, 0}, {2, 2}, {0, 2}, {0, 0}}, 4},
      {"repeated points", {{0, 0}, {0, 0}, {2, 0}, {2, 0}, {2, 2}, {2, 2}, {0, 2}}, 4},
      {"points along the edges",
       {{0, 0}, {1, 0}, {2, 0}, {2, 1}, {2, 2}, {1, 2}, {0, 2}, {0, 1}},
       4},
      {"arrow", {{0, 0}, {4, 4}, {0, 8}, {2, 4}}, 8},
      {"comb", {{0, 0}, {3, 0}, {3, 5}, {2, 5}, {2, 1}, {1, 1}, {1, 5}, {0, 5}}, 11},
      {"spike", {{0, 0}, {4, 0}, {9, 0}, {4, 0}, {4, 4}, {0, 4}}, 16},
      {"spike inwards", {{0, 0}, {4, 0}, {4, 4}, {2, 4}, {2, 1}, {2, 4}, {0, 4}}, 16},
      {"two squares that meet in a point",
       {{0, 0}, {1, 0}, {1, 1}, {2, 1}, {2, 2}, {1, 2}, {1, 1}, {0, 1}},
       2},
      {"two triangles in opposite directions that meet in a point",
       {{1, 1}, {0, 2}, {0, 0}, {1, 1}, {2, 2}, {2, 0}},
       2},
      {"hole that touches the edge's vertex",
       {{0, 0}, {6, 0}, {6, 6}, {0, 6}, {0, 0}, {1, 3}, {3, 3}, {3, 1}},
       30},
      {"hole on a bridge",
       {{0, 0}, {6, 0}, {6, 6}, {0, 6}, {0, 0}, {2, 2}, {2, 4}, {4, 4}, {4, 2}, {2, 2}},
       32},
      {"touches its own edge", {{0, 0}, {8, 0}, {8, 4}, {6, 4}, {4, 0}, {2, 4}, {0, 4}}, 24},
  };
  for (const auto& c : cases) {
    ExpectTiled(c.points, c.area, c.what);
    ExpectTiled(Points(c.points.rbegin(), c.points.rend()), c.area,
                std::string(c.what) + ", reversed");
    for (const double scale : {1e-200, 1e-9, 1e9, 1e140}) {
      Points scaled = c.points;
      for (P3& p : scaled) p = {p.x * scale, p.y * scale, p.z};
      const auto triangles = FaceTriangles(scaled, WholeLoop(scaled));
      Points back = scaled;
      for (P3& p : back) p = {p.x / scale, p.y / scale, p.z};
      EXPECT_NEAR(AreaOf(back, triangles), c.area, 1e-9 * c.area) << c.what << " x " << scale;
    }
  }
}

TEST(FaceTriangles, KeepTheDirectionOfTheLoopInAnyPlane) {
  const Points flat = {{0, 0}, {4, 0}, {4, 4}, {2, 1}, {0, 4}};
  for (const double angle : {0.1, 1.3, 1.6, 2.9}) {
    Points tilted;
    for (const P3& p : flat) {
      const double y = p.y * std::cos(angle), z = p.y * std::sin(angle);
      tilted.push_back({p.x * std::cos(angle) - z * std::sin(angle), y,
                        p.x * std::sin(angle) + z * std::cos(angle)});
    }
    const P3 whole = Normal(tilted[0], tilted[1], tilted[2]);
    const auto triangles = FaceTriangles(tilted, WholeLoop(tilted));
    EXPECT_NEAR(AreaOf(tilted, triangles), LoopArea(flat), 1e-9) << angle;
    for (const auto& t : triangles) {
      const P3 n = Normal(tilted[static_cast<size_t>(t[0])], tilted[static_cast<size_t>(t[1])],
                          tilted[static_cast<size_t>(t[2])]);
      EXPECT_GT(n.x * whole.x + n.y * whole.y + n.z * whole.z, 0) << angle;
    }
  }
}

TEST(FaceTriangles, WhatHasNoAreaOrCannotBeUsedGivesNone) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  const Points points = {{0, 0}, {1, 0}, {2, 0}, {0, 1}, {nan, 0}, {0, inf}};
  const std::vector<int32_t> loops[] = {
      {},        {0},           {0, 1},        {0, 1, 2},    {0, 1, 2, 1}, {0, 0, 0, 0, 0},
      {0, 1, 0}, {0, 1, 3, 99}, {0, 1, -1, 3}, {0, 1, 3, 4}, {0, 1, 5},
  };
  for (const auto& loop : loops) {
    EXPECT_TRUE(FaceTriangles(points, loop).empty()) << testing::PrintToString(loop);
  }
}

// Random star shapes are simple by construction, whatever their points.
TEST(FaceTriangles, TileRandomStars) {
  std::mt19937 random(7);
  for (int round = 0; round < 200; ++round) {
    const int count = 5 + static_cast<int>(random() % 60);
    Points star;
    for (int i = 0; i < count; ++i) {
      const double angle = 2 * std::numbers::pi * i / count;
      const double radius = 1 + static_cast<double>(random() % 1000) / 50;
      star.push_back({radius * std::cos(angle), radius * std::sin(angle)});
    }
    ExpectTiled(star, LoopArea(star), "star " + std::to_string(round));
  }
}

// Loops that cross themselves promise nothing but an end.
TEST(FaceTriangles, RandomLoopsNeverHangOrCrash) {
  std::mt19937 random(11);
  for (int round = 0; round < 300; ++round) {
    const size_t count = 3 + random() % 200;
    const auto grid = 1 + random() % 20;  // few places: many repeated and touching points
    Points points;
    for (size_t i = 0; i < count; ++i) {
      points.push_back(
          {static_cast<double>(random() % grid), static_cast<double>(random() % grid)});
    }
    EXPECT_LE(FaceTriangles(points, WholeLoop(points)).size(), count);
  }
}

// A spiral, a comb and random noise of 100,000 vertices end within seconds, sanitized builds too.
TEST(FaceTriangles, LongLoops) {
  constexpr int kCount = 100000;
  Points spiral, comb, star, noise;
  std::mt19937 random(3);
  for (int i = 0; i < kCount / 2; ++i) {
    const double angle = i * 0.01;
    spiral.push_back({(10 + angle) * std::cos(angle), (10 + angle) * std::sin(angle)});
    comb.push_back({static_cast<double>(i), i % 2 ? 1000.0 : 1.0});
    star.push_back({(i % 2 ? 100.0 : 1.0) * std::cos(4 * std::numbers::pi * i / kCount),
                    (i % 2 ? 100.0 : 1.0) * std::sin(4 * std::numbers::pi * i / kCount)});
  }
  for (int i = kCount / 2; i-- > 0;) {
    const double angle = i * 0.01;
    spiral.push_back({(11 + angle) * std::cos(angle), (11 + angle) * std::sin(angle)});
    comb.push_back({static_cast<double>(i), i % 2 ? 999.0 : 0.0});
  }
  for (int i = 0; i < kCount; ++i) {
    noise.push_back(
        {static_cast<double>(random() % 100000), static_cast<double>(random() % 100000)});
  }
  for (const Points* points : {&spiral, &comb, &star}) {
    const auto triangles = FaceTriangles(*points, WholeLoop(*points));
    EXPECT_NEAR(AreaOf(*points, triangles), LoopArea(*points), 1e-6 * LoopArea(*points));
  }
  EXPECT_LE(FaceTriangles(noise, WholeLoop(noise)).size(), noise.size());
}

}  // namespace
}  // namespace kerno
