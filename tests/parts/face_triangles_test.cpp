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

// The triangles tile the loop: the same area, in its direction, and the middle of each lies inside
// the loop as it was `flat`.
void ExpectTiled(const Points& points, const Points& flat, double area, const std::string& what) {
  const auto triangles = FaceTriangles(points, WholeLoop(points));
  EXPECT_NEAR(AreaOf(flat, triangles), area, 1e-9 * area) << what;
  EXPECT_LE(triangles.size(), points.size() - 2) << what;
  for (const auto& [i, k, l] : triangles) {
    const P3 &a = flat[static_cast<size_t>(i)], &b = flat[static_cast<size_t>(k)],
             &c = flat[static_cast<size_t>(l)];
    if (Length(Normal(a, b, c)) < 1e-9) continue;  // too thin to have a middle
    EXPECT_TRUE(Inside(flat, (a.x + b.x + c.x) / 3, (a.y + b.y + c.y) / 3)) << what;
  }
}

TEST(FaceTriangles, TileLoopsOfEveryShapeInBothDirections) {
  const struct {
    const char* what;
    Points points;
    double area;
  } cases[] = {
      {"repeated points", {{0, 0}, {0, 0}, {2, 0}, {2, 0}, {2, 2}, {2, 2}, {0, 2}}, 4},
      {"comb", {{0, 0}, {3, 0}, {3, 5}, {2, 5}, {2, 1}, {1, 1}, {1, 5}, {0, 5}}, 11},
      {"spike inwards", {{0, 0}, {4, 0}, {4, 4}, {2, 4}, {2, 1}, {2, 4}, {0, 4}}, 16},
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
    const Points reversed(c.points.rbegin(), c.points.rend());
    for (const Points& loop : {c.points, reversed}) {
      for (const double scale : {1e-150, 1e-9, 1.0, 1e9, 1e140}) {
        for (const double angle : {0.0, 0.1, 1.6, 2.9}) {
          Points turned;
          for (const P3& p : loop) {
            turned.push_back(
                {p.x * scale * std::cos(angle), p.y * scale, p.x * scale * std::sin(angle)});
          }
          ExpectTiled(turned, loop, c.area, c.what);
        }
      }
    }
  }
}

TEST(FaceTriangles, WhatHasNoAreaOrCannotBeUsedGivesNone) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  const Points points = {{0, 0}, {1, 0}, {2, 0}, {0, 1}, {nan, 0}, {0, inf}};
  const std::vector<int32_t> loops[] = {
      {},           {0, 1},    {0, 1, 2, 1}, {0, 0, 0, 0, 0}, {0, 1, 3, 99}, {0, 1, -1, 3},
      {0, 1, 3, 4}, {0, 1, 5},
  };
  for (const auto& loop : loops) {
    EXPECT_TRUE(FaceTriangles(points, loop).empty()) << testing::PrintToString(loop);
  }
}

// Random star shapes are simple by construction, whatever their points; random loops cross
// themselves and promise nothing but an end.
TEST(FaceTriangles, RandomLoops) {
  std::mt19937 random(7);
  for (int round = 0; round < 200; ++round) {
    const int count = 5 + static_cast<int>(random() % 60);
    const auto grid = 1 + random() % 20;  // few places: many repeated and touching points
    Points star, loop;
    for (int i = 0; i < count; ++i) {
      const double angle = 2 * std::numbers::pi * i / count;
      const double radius = 1 + static_cast<double>(random() % 1000) / 50;
      star.push_back({radius * std::cos(angle), radius * std::sin(angle)});
      loop.push_back({static_cast<double>(random() % grid), static_cast<double>(random() % grid)});
    }
    ExpectTiled(star, star, LoopArea(star), "star " + std::to_string(round));
    EXPECT_LE(FaceTriangles(loop, WholeLoop(loop)).size(), loop.size());
  }
  Points noise;  // ends within seconds, sanitized builds too
  for (int i = 0; i < 100000; ++i) {
    noise.push_back({static_cast<double>(random()), static_cast<double>(random())});
  }
  EXPECT_LE(FaceTriangles(noise, WholeLoop(noise)).size(), noise.size());
}

}  // namespace
}  // namespace kerno
