#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/drawing.h"

namespace kerno {
namespace {

constexpr uint32_t kWhite = 0xFFFFFF;
constexpr uint32_t kRed = 0x0000FF;
constexpr uint32_t kBlue = 0xFF0000;
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
const PenData kNoPen{.style = PenStyle::kNull};
const BrushData kRedBrush{.style = BrushStyle::kSolid, .color = kRed};
const BrushData kNoBrush{.style = BrushStyle::kHollow};

std::vector<DevicePoint> Square(double left, double top, double side) {
  return {{left, top}, {left + side, top}, {left + side, top + side}, {left, top + side}};
}

// A surface with a pen and a brush, white at first.
class SurfaceTest : public testing::Test {
 protected:
  void Make(int width, int height, const PenData& pen, const BrushData& brush) {
    surface_ = CreateBitmapSurface(width, height, kWhite);
    pen_ = Context().CreatePenIndirect(pen);
    brush_ = Context().CreateBrushIndirect(brush);
    EXPECT_EQ(Context().SelectPen(pen_.get()), nullptr);
    EXPECT_EQ(Context().SelectBrush(brush_.get()), nullptr);
  }
  DrawingContext& Context() { return surface_->Context(); }
  uint32_t At(int x, int y) const {
    const auto at = surface_->Pixels().begin() + (y * surface_->Width() + x) * 4;
    EXPECT_EQ(at[3], 255);
    return at[2] | static_cast<uint32_t>(at[1]) << 8 | static_cast<uint32_t>(at[0]) << 16;
  }
  // The pixels that are not white, and the box around them.
  struct Ink {
    int count = 0, left = 999, top = 999, right = -1, bottom = -1;
  };
  Ink FindInk() const {
    Ink ink;
    for (int y = 0; y < surface_->Height(); ++y) {
      for (int x = 0; x < surface_->Width(); ++x) {
        if (At(x, y) == kWhite) continue;
        ink = {ink.count + 1, std::min(ink.left, x), std::min(ink.top, y), std::max(ink.right, x),
               std::max(ink.bottom, y)};
      }
    }
    return ink;
  }
  bool DrawPolygon(const std::vector<DevicePoint>& points) {
    const auto count = static_cast<uint32_t>(points.size());
    return Context().DrawPolygons(points, std::span(&count, 1));
  }

  std::unique_ptr<BitmapSurface> surface_;
  std::unique_ptr<Pen> pen_;
  std::unique_ptr<Brush> brush_;
};

TEST_F(SurfaceTest, PolygonsCoverExactlyTheirPixelsAndTheAlternateRuleOpensHoles) {
  std::vector<DevicePoint> points = Square(1, 1, 8);
  const auto within = Square(3, 3, 4);  // wound the same way
  points.insert(points.end(), within.begin(), within.end());
  const uint32_t counts[] = {4, 4};
  for (const FillMode mode : {FillMode::kAlternate, FillMode::kWinding}) {
    Make(10, 10, kNoPen, kRedBrush);
    EXPECT_EQ(Context().SetFillMode(mode), FillMode::kAlternate);
    ASSERT_TRUE(Context().DrawPolygons(points, counts));
    for (int y = 0; y < 10; ++y) {
      for (int x = 0; x < 10; ++x) {
        const bool inside = x >= 1 && x < 9 && y >= 1 && y < 9;
        const bool open = x >= 3 && x < 7 && y >= 3 && y < 7 && mode == FillMode::kAlternate;
        EXPECT_EQ(At(x, y), inside && !open ? kRed : kWhite) << x << "," << y;
      }
    }
  }
  Make(4, 4, kNoPen, {.style = BrushStyle::kSolid, .color = 0});
  ASSERT_TRUE(DrawPolygon(Square(0.5, 1, 1)));
  EXPECT_NEAR(static_cast<int>(At(0, 1) & 255), 128, 2) << "half covered";
  EXPECT_NEAR(static_cast<int>(At(1, 1) & 255), 128, 2);
  EXPECT_EQ(FindInk().count, 2);
}

TEST_F(SurfaceTest, TextHangsFromItsUpperLeftCornerInLogicalUnits) {
  for (const int units : {1, 4}) {
    Make(80, 80, kNoPen, kNoBrush);
    const auto font =
        Context().CreateFontIndirect({.height = 48 * units, .face_name = u"DejaVu Sans"});
    ASSERT_NE(font, nullptr);
    Context().SelectFont(font.get());
    Context().SetLogicalUnits(units);
    EXPECT_EQ(Context().SetTextColor(kRed), 0u);
    Extent extent;
    ASSERT_TRUE(Context().GetTextExtent(u"O", &extent));
    const int width = extent.cx / units;
    ASSERT_TRUE(Context().TextOut(20 * units, 10 * units, u"O"));
    const Ink ink = FindInk();
    EXPECT_TRUE(ink.left >= 20 && ink.right <= 20 + width && ink.right - ink.left > width / 2);
    EXPECT_TRUE(ink.top >= 10 && ink.bottom <= 10 + 48 && ink.bottom - ink.top > 24);
    const int middle = (ink.top + ink.bottom) / 2;
    EXPECT_EQ(At((ink.left + ink.right) / 2, middle), kWhite) << "the counter is open";
    EXPECT_EQ(At(ink.left + 2, middle), kRed);
    Context().SelectFont(nullptr);
  }
}

TEST_F(SurfaceTest, WholePolygonsCountInLogicalUnits) {
  Make(10, 10, kNoPen, kRedBrush);
  EXPECT_EQ(Context().SetLogicalUnits(0), 1);
  EXPECT_EQ(Context().SetLogicalUnits(16), 1);
  const IntPoint points[] = {{32, 32}, {64, 32}, {64, 64}, {32, 64}};
  for (const int32_t count : {-1, 5}) {
    EXPECT_FALSE(Context().PolyPolygon(points, std::span(&count, 1)));
  }
  const int32_t count = 4;
  ASSERT_TRUE(Context().PolyPolygon(points, std::span(&count, 1)));
  EXPECT_EQ(FindInk().count, 4);
  EXPECT_EQ(At(2, 2), kRed);
  EXPECT_EQ(At(3, 3), kRed);
}

TEST_F(SurfaceTest, PensAreAsWideAsAskedAndDashed) {
  Make(20, 20, {.width = 4, .color = kBlue}, kRedBrush);
  ASSERT_TRUE(DrawPolygon(Square(4, 4, 12)));
  EXPECT_EQ(At(10, 3), kBlue);  // the closing edges too: half the width on either side
  EXPECT_EQ(At(10, 5), kBlue);
  EXPECT_EQ(At(3, 10), kBlue);
  EXPECT_EQ(At(10, 10), kRed);
  EXPECT_EQ(At(10, 1), kWhite);

  const std::pair<PenData, std::vector<double>> rows[] = {
      {{.style = PenStyle::kSolid}, {}},
      {{.style = PenStyle::kDash}, {18, 6}},
      {{.style = PenStyle::kDashDot, .width = 2}, {18, 12, 6, 12}},
      {{.style = PenStyle::kDot, .width = 2, .pattern_length = 12}, {6, 6}},
      {{.style = PenStyle::kDashDotDot, .pattern_length = 48}, {18, 6, 6, 6, 6, 6}},
  };
  for (const auto& [pen, lengths] : rows) EXPECT_EQ(DashLengths(pen), lengths);
  Make(24, 3, {.style = PenStyle::kDot, .pattern_length = 8}, kNoBrush);
  const DevicePoint line[] = {{0, 1.5}, {24, 1.5}};
  ASSERT_TRUE(Context().DrawPolyline(line));
  for (int x = 0; x < 24; ++x) EXPECT_EQ(At(x, 1), x % 8 < 4 ? 0u : kWhite) << x;
}

TEST_F(SurfaceTest, ArcsRunCounterClockwiseAsSeen) {
  Make(20, 20, {.width = 2}, kNoBrush);
  ASSERT_TRUE(Context().DrawArc({10, 10}, 6, 0, 90));
  EXPECT_NE(At(14, 5), kWhite);  // the upper right quarter
  EXPECT_EQ(At(5, 5), kWhite);
  EXPECT_EQ(At(14, 14), kWhite);
  ASSERT_TRUE(Context().DrawCircle({10, 10}, 6));
  EXPECT_NE(At(5, 14), kWhite);
  for (double radius : {0.0, 0.01, 1.0, 500.0, 1e9, kNan, kInf}) {
    for (const DevicePoint& p : ArcPoints({0, 0}, radius, 30, -360)) {
      EXPECT_NEAR(std::hypot(p.x, p.y), radius, radius * 1e-9) << radius;
    }
  }
}

TEST_F(SurfaceTest, SystemHatchesHaveTheirDirections) {
  constexpr int kInkInCell[] = {8, 8, 8, 8, 15, 16, 64};
  for (int32_t hatch = 0; hatch < 7; ++hatch) {
    Make(8, 8, kNoPen, {.style = BrushStyle::kHatched, .color = kRed, .hatch = hatch});
    ASSERT_TRUE(DrawPolygon(Square(0, 0, 8)));
    EXPECT_EQ(FindInk().count, kInkInCell[hatch]) << hatch;
    EXPECT_EQ(At(0, 0) == kRed, hatch == 2 || hatch >= 5) << hatch;
    EXPECT_EQ(At(0, 7) == kRed, hatch == 3 || hatch >= 5) << hatch;
  }
}

TEST_F(SurfaceTest, AbsurdCoordinatesNeitherCrashNorSpill) {
  Make(16, 16, {.style = PenStyle::kDash, .width = 1e9, .pattern_length = 1e-300}, kRedBrush);
  const DevicePoint wild[] = {{kNan, 1}, {1, kInf}, {-1e300, -1e300}, {1e300, 4}, {4, 1e300}};
  const uint32_t counts[] = {0, 3, 2};
  EXPECT_TRUE(Context().DrawPolygons(wild, counts));
  EXPECT_TRUE(Context().DrawPolyline(wild));
  EXPECT_TRUE(Context().DrawCircle({kNan, 0}, 4));
  EXPECT_TRUE(Context().DrawCircle({0, 0}, 1e300));
  Make(16, 16, kNoPen, kRedBrush);
  EXPECT_TRUE(DrawPolygon({{-1e12, -1e12}, {1e12, -1e12}, {kNan, 3}, {1e12, 1e12}, {-1e12, 1e12}}));
  EXPECT_EQ(FindInk().count, 256);
  for (const auto& [width, height] : {std::pair{0, 1}, {1, 0}, {-5, 5}, {32768, 1}, {1, 1 << 30}}) {
    EXPECT_EQ(CreateBitmapSurface(width, height, kWhite), nullptr);
  }
}

}  // namespace
}  // namespace kerno
