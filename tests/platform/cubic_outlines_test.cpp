// Cubic outlines against the rasteriser's own curves, evaluated densely.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <complex>
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

// The cubics of a glyph as FreeType walks them, x stretched.
std::vector<Cubic> CubicsOf(FT_Face face, char32_t ch, double stretch) {
  struct Walk {
    double stretch;
    Spot pen;
    std::vector<Cubic> cubics;
    Spot At(const FT_Vector* v) const {
      return {stretch * static_cast<double>(v->x) / 64, static_cast<double>(v->y) / 64};
    }
  } walk{stretch, {}, {}};
  EXPECT_EQ(FT_Load_Char(face, ch, FT_LOAD_NO_BITMAP), 0);
  FT_Outline_Funcs funcs{};
  funcs.move_to = [](const FT_Vector* to, void* user) {
    auto& w = *static_cast<Walk*>(user);
    w.pen = w.At(to);
    return 0;
  };
  funcs.line_to = funcs.move_to;
  funcs.conic_to = [](const FT_Vector*, const FT_Vector*, void*) { return 1; };
  funcs.cubic_to = [](const FT_Vector* b, const FT_Vector* c, const FT_Vector* d, void* user) {
    auto& w = *static_cast<Walk*>(user);
    w.cubics.push_back({w.pen, w.At(b), w.At(c), w.At(d)});
    w.pen = w.At(d);
    return 0;
  };
  EXPECT_EQ(FT_Outline_Decompose(&face->glyph->outline, &funcs, &walk), 0);
  return walk.cubics;
}

std::vector<Polyline> SplinesOf(const FontProbe& font, char32_t ch) {
  const auto spot = [](const test::FixedPoint& p) { return Spot(p.first, p.second) / 65536.0; };
  std::vector<Polyline> splines;
  for (const auto& contour : test::ReadNativeRecords(font.Glyph(ch).buffer)) {
    Spot pen = spot(contour.start);
    for (const auto& record : contour.records) {
      std::vector<Spot> spots;
      std::transform(record.points.begin(), record.points.end(), std::back_inserter(spots), spot);
      if (record.type != 1) splines.push_back(Dense(pen, spots));
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
    for (const char32_t ch : std::u32string_view(U"O8&@gSฟ๑")) {
      const auto cubics = CubicsOf(face.get(), ch, width == 0 ? 1 : double(width) / own);
      const auto splines = SplinesOf(font, ch);
      ASSERT_GT(cubics.size(), 0U);
      ASSERT_EQ(splines.size(), cubics.size()) << height << " " << uint32_t{ch};
      for (size_t i = 0; i < cubics.size(); ++i) {
        EXPECT_LE(Gap(splines[i], Dense(cubics[i])), kWanted) << height << " " << uint32_t{ch};
      }
    }
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
