// Cubic outlines against the rasteriser's own curves, evaluated densely.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <vector>

#include "platform/posix/free_type.h"
#include "platform/posix/native_outline.h"
#include "support/font_files.h"
#include "support/font_probe.h"
#include FT_OUTLINE_H

namespace kerno {
namespace {

using test::FontProbe;

struct Spot {
  double x, y;
};
using Cubic = std::array<Spot, 4>;
using Polyline = std::vector<Spot>;

constexpr double kWanted = 1.0 / 16;
constexpr int kSteps = 400;

Spot Mix(Spot a, Spot b, double t) {
  return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
}

Spot At(const Cubic& c, double t) {
  const Spot ab = Mix(c[0], c[1], t);
  const Spot bc = Mix(c[1], c[2], t);
  const Spot cd = Mix(c[2], c[3], t);
  return Mix(Mix(ab, bc, t), Mix(bc, cd, t), t);
}

Polyline Dense(const Cubic& cubic) {
  Polyline line;
  for (int i = 0; i <= kSteps; ++i) line.push_back(At(cubic, i / double{kSteps}));
  return line;
}

// A spline record: control points with implied joints, and the end.
Polyline Dense(Spot start, const std::vector<Spot>& record) {
  Polyline line = {start};
  for (size_t i = 0; i + 1 < record.size(); ++i) {
    const bool last = i + 2 == record.size();
    const Spot end = last ? record[i + 1] : Mix(record[i], record[i + 1], 0.5);
    for (int step = 1; step <= 40; ++step) {
      const double t = step / 40.0;
      line.push_back(Mix(Mix(start, record[i], t), Mix(record[i], end, t), t));
    }
    start = end;
  }
  return line;
}

double Distance(Spot p, Spot a, Spot b) {
  const double dx = b.x - a.x;
  const double dy = b.y - a.y;
  const double length = dx * dx + dy * dy;
  const double t =
      length > 0 ? std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / length, 0.0, 1.0) : 0;
  const Spot q = Mix(a, b, t);
  return std::hypot(p.x - q.x, p.y - q.y);
}

// How far `line` gets away from `other`.
double Farthest(const Polyline& line, const Polyline& other) {
  double farthest = 0;
  for (const Spot& p : line) {
    double nearest = 1e9;
    for (size_t i = 0; i + 1 < other.size(); ++i) {
      nearest = std::min(nearest, Distance(p, other[i], other[i + 1]));
    }
    farthest = std::max(farthest, nearest);
  }
  return farthest;
}

double Gap(const Polyline& a, const Polyline& b) {
  return std::max(Farthest(a, b), Farthest(b, a));
}

struct Walk {
  Spot pen{};
  std::vector<Cubic> cubics;
};

Spot ToSpot(const FT_Vector* v) {
  return {static_cast<double>(v->x) / 64, static_cast<double>(v->y) / 64};
}

// The cubics of a glyph as FreeType walks them, x stretched.
std::vector<Cubic> CubicsOf(FT_Face face, char32_t ch, double stretch) {
  EXPECT_EQ(FT_Load_Char(face, ch, FT_LOAD_NO_BITMAP), 0);
  FT_Outline_Funcs funcs{};
  funcs.move_to = [](const FT_Vector* to, void* walk) {
    static_cast<Walk*>(walk)->pen = ToSpot(to);
    return 0;
  };
  funcs.line_to = funcs.move_to;
  funcs.conic_to = [](const FT_Vector*, const FT_Vector*, void*) { return 1; };
  funcs.cubic_to = [](const FT_Vector* b, const FT_Vector* c, const FT_Vector* d, void* user) {
    auto* walk = static_cast<Walk*>(user);
    walk->cubics.push_back({walk->pen, ToSpot(b), ToSpot(c), ToSpot(d)});
    walk->pen = ToSpot(d);
    return 0;
  };
  Walk walk;
  EXPECT_EQ(FT_Outline_Decompose(&face->glyph->outline, &funcs, &walk), 0);
  for (Cubic& cubic : walk.cubics) {
    for (Spot& spot : cubic) spot.x *= stretch;
  }
  return walk.cubics;
}

std::vector<Polyline> SplinesOf(const FontProbe& font, char32_t ch) {
  const auto spot = [](const test::FixedPoint& p) {
    return Spot{p.first / 65536.0, p.second / 65536.0};
  };
  std::vector<Polyline> splines;
  for (const auto& contour : test::ReadNativeRecords(font.Glyph(ch).buffer)) {
    Spot pen = spot(contour.start);
    for (const auto& record : contour.records) {
      EXPECT_TRUE(record.type == 1 || record.type == 2) << record.type;
      std::vector<Spot> spots;
      std::transform(record.points.begin(), record.points.end(), std::back_inserter(spots), spot);
      if (record.type == 2) splines.push_back(Dense(pen, spots));
      pen = spots.back();
    }
  }
  return splines;
}

TEST(CubicOutlines, SplinesStayNearTheCubicsOfTheFace) {
  const std::string path = test::InstalledFontPath(u"Tlwg Mono");
  ASSERT_FALSE(path.empty());
  for (const auto& [height, width] : {std::pair{9, 0}, {100, 0}, {1000, 0}, {1000, 900}}) {
    const FontProbe font(u"Tlwg Mono", -height, width);
    const FacePtr face = OpenFace(path, 0);
    ASSERT_TRUE(face && FT_Set_Pixel_Sizes(face.get(), 0, static_cast<FT_UInt>(height)) == 0);
    const int32_t own = FontProbe(u"Tlwg Mono", -height).metrics().tmAveCharWidth;
    const double stretch = width == 0 ? 1.0 : static_cast<double>(width) / own;
    double worst = 0;
    for (const char32_t ch : std::u32string_view(U"O8&@gSฟ๑")) {
      const auto cubics = CubicsOf(face.get(), ch, stretch);
      const auto splines = SplinesOf(font, ch);
      ASSERT_GT(cubics.size(), 0U);
      ASSERT_EQ(splines.size(), cubics.size()) << height << " " << uint32_t{ch};
      for (size_t i = 0; i < cubics.size(); ++i) {
        worst = std::max(worst, Gap(splines[i], Dense(cubics[i])));
      }
    }
    EXPECT_LE(worst, kWanted) << "height " << height << " width " << width;
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
  for (int i = 0; i < 40; ++i) {
    cases.emplace_back();
    for (int& value : cases.back()) value = coordinate(random);
  }
  for (const auto& c : cases) {
    Outline outline;
    for (size_t i = 0; i < 8; i += 2) {
      outline.points.push_back(
          {c[i], c[i + 1], i == 0 || i == 6 ? PointKind::kOn : PointKind::kCubic});
    }
    outline.ends = {4};
    const Outline flat = CubicsToQuadratics(outline);
    std::vector<Spot> record;
    for (size_t i = 1; i < flat.points.size(); ++i) {
      record.push_back(
          {static_cast<double>(flat.points[i].x) / 64, static_cast<double>(flat.points[i].y) / 64});
    }
    Cubic cubic;
    for (size_t i = 0; i < 4; ++i) cubic[i] = {c[2 * i] / 64.0, c[2 * i + 1] / 64.0};
    EXPECT_LE(Gap(Dense(cubic[0], record), Dense(cubic)), kWanted)
        << c[0] << " " << c[1] << " " << c[2] << " " << c[3];
  }
}

}  // namespace
}  // namespace kerno
