// The preview's rasteriser against the library's.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <vector>

#include "platform/drawing.h"

namespace kerno {
namespace {

constexpr int kSide = 97;

struct Drawn {
  const char* name;
  PenData pen;
  BrushData brush;
  FillMode mode;
  double reach;    // how far beyond the surface corners lie
  int shade = 12;  // of 255 that pixels may differ by: both round, one to 256 parts of a pixel
};

std::vector<uint8_t> PictureOf(BitmapSurface& surface, const Drawn& drawn, unsigned seed) {
  DrawingContext& dc = surface.Context();
  const auto pen = dc.CreatePenIndirect(drawn.pen);
  const auto brush = dc.CreateBrushIndirect(drawn.brush);
  dc.SelectPen(pen.get());
  dc.SelectBrush(brush.get());
  dc.SetFillMode(drawn.mode);
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> place(-drawn.reach, kSide + drawn.reach);
  std::vector<DevicePoint> points(11);
  for (DevicePoint& p : points) p = {place(random), place(random)};
  points[4].x = points[3].x;  // edges along the pixels, too
  points[6].y = points[5].y;
  const uint32_t counts[] = {7, 4};
  EXPECT_TRUE(dc.DrawPolygons(points, counts));
  EXPECT_TRUE(dc.DrawPolyline(std::span(points).first(3)));
  EXPECT_TRUE(dc.DrawCircle(points[0], 20));
  dc.SelectPen(nullptr);
  dc.SelectBrush(nullptr);
  return {surface.Pixels().begin(), surface.Pixels().end()};
}

TEST(PreviewSurfaceTest, PaintsWhatTheLibraryPaints) {
  const PenData none{.style = PenStyle::kNull};
  const BrushData blue{.color = 0xC06020}, hollow{.style = BrushStyle::kHollow};
  const BrushData hatched{BrushStyle::kHatched, 0x0000FF, 5};
  constexpr int kRound = 100;  // where joins of chords lie on an edge, their shares add up
  const Drawn cases[] = {
      {"alternate", none, blue, FillMode::kAlternate, 10},
      {"winding", none, blue, FillMode::kWinding, 10},
      {"far corners", none, blue, FillMode::kAlternate, 3000},
      {"hatched", none, hatched, FillMode::kWinding, 10},
      {"hairlines", {.color = 0x00FF00}, blue, FillMode::kAlternate, 40},
      {"wide lines", {.width = 7.5, .color = 0x00FF00}, hollow, FillMode::kAlternate, 40, kRound},
      {"dashes", {PenStyle::kDashDot, 1, 0x00FF00, 30}, hollow, FillMode::kAlternate, 40},
      {"wide dashes", {PenStyle::kDash, 5, 0x00FF00, 40}, hollow, FillMode::kAlternate, 40, kRound},
  };
  for (const Drawn& drawn : cases) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
      const auto ours = CreatePreviewSurface(kSide, kSide, 0xE0F0FF);
      const auto theirs = CreateBitmapSurface(kSide, kSide, 0xE0F0FF);
      const auto a = PictureOf(*ours, drawn, seed), b = PictureOf(*theirs, drawn, seed);
      ASSERT_EQ(a.size(), b.size());
      size_t differ = 0;
      for (size_t i = 0; i < a.size(); ++i) differ += std::abs(a[i] - b[i]) > drawn.shade;
      EXPECT_LE(differ, a.size() / 500) << drawn.name << " " << seed;
    }
  }
}

}  // namespace
}  // namespace kerno
