#include <gtest/gtest.h>

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

uint32_t PixelAt(const BitmapSurface& surface, int x, int y) {
  const auto width = static_cast<size_t>(surface.Width());
  const size_t at = (static_cast<size_t>(y) * width + static_cast<size_t>(x)) * 4;
  const auto pixels = surface.Pixels();
  EXPECT_EQ(pixels[at + 3], 255);
  return pixels[at + 2] | static_cast<uint32_t>(pixels[at + 1]) << 8 |
         static_cast<uint32_t>(pixels[at]) << 16;
}

int InkCount(const BitmapSurface& surface) {
  int ink = 0;
  for (int y = 0; y < surface.Height(); ++y) {
    for (int x = 0; x < surface.Width(); ++x) ink += PixelAt(surface, x, y) != kWhite;
  }
  return ink;
}

std::vector<DevicePoint> Square(double left, double top, double side) {
  return {{left, top}, {left + side, top}, {left + side, top + side}, {left, top + side}};
}

// Selects a pen and a brush for the life of a test.
class SurfaceTest : public testing::Test {
 protected:
  void Make(int width, int height) { surface_ = CreateBitmapSurface(width, height, kWhite); }
  DrawingContext& Context() { return surface_->Context(); }
  void Select(const PenData& pen, const BrushData& brush) {
    Context().SelectPen(nullptr);
    Context().SelectBrush(nullptr);
    pen_ = Context().CreatePenIndirect(pen);
    brush_ = Context().CreateBrushIndirect(brush);
    Context().SelectPen(pen_.get());
    Context().SelectBrush(brush_.get());
  }
  uint32_t At(int x, int y) { return PixelAt(*surface_, x, y); }

  std::unique_ptr<BitmapSurface> surface_;
  std::unique_ptr<Pen> pen_;
  std::unique_ptr<Brush> brush_;
};

const PenData kNoPen{.style = PenStyle::kNull};
const BrushData kRedBrush{.style = BrushStyle::kSolid, .color = kRed};
const BrushData kNoBrush{.style = BrushStyle::kHollow};

TEST_F(SurfaceTest, PolygonsCoverExactlyTheirPixelsAndTheAlternateRuleOpensHoles) {
  std::vector<DevicePoint> points = Square(1, 1, 8);
  const auto within = Square(3, 3, 4);  // wound the same way
  points.insert(points.end(), within.begin(), within.end());
  const uint32_t counts[] = {4, 4};
  for (const FillMode mode : {FillMode::kAlternate, FillMode::kWinding}) {
    Make(10, 10);
    Select(kNoPen, kRedBrush);
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
}

TEST_F(SurfaceTest, TextHangsFromItsUpperLeftCornerInLogicalUnits) {
  for (const int units : {1, 4}) {
    Make(80, 80);
    const auto font =
        Context().CreateFontIndirect({.height = 48 * units, .face_name = u"DejaVu Sans"});
    ASSERT_NE(font, nullptr);
    Context().SelectFont(font.get());
    Context().SetLogicalUnits(units);
    Context().SetTextColor(kRed);
    Extent extent;
    ASSERT_TRUE(Context().GetTextExtent(u"O", &extent));
    const int width = extent.cx / units;
    ASSERT_TRUE(Context().TextOut(20 * units, 10 * units, u"O"));
    int left = 80, right = 0, top = 80, bottom = 0;
    for (int y = 0; y < 80; ++y) {
      for (int x = 0; x < 80; ++x) {
        if (At(x, y) == kWhite) continue;
        left = std::min(left, x);
        right = std::max(right, x);
        top = std::min(top, y);
        bottom = std::max(bottom, y);
      }
    }
    EXPECT_GE(left, 20);
    EXPECT_LE(right, 20 + width);
    EXPECT_GT(right - left, width / 2);
    EXPECT_GE(top, 10);
    EXPECT_LE(bottom, 10 + 48);
    EXPECT_GT(bottom - top, 24);
    EXPECT_EQ(At((left + right) / 2, (top + bottom) / 2), kWhite) << "the counter is open";
    Context().SelectFont(nullptr);
  }
}

TEST_F(SurfaceTest, PartlyCoveredPixelsAreShaded) {
  Make(4, 4);
  Select(kNoPen, {.style = BrushStyle::kSolid, .color = 0});
  const uint32_t count = 4;
  ASSERT_TRUE(Context().DrawPolygons(Square(0.5, 1, 1), std::span(&count, 1)));
  EXPECT_NEAR(static_cast<int>(At(0, 1) & 255), 128, 2);
  EXPECT_NEAR(static_cast<int>(At(1, 1) & 255), 128, 2);
  EXPECT_EQ(At(2, 1), kWhite);
}

TEST_F(SurfaceTest, WholePolygonsCountInLogicalUnits) {
  Make(10, 10);
  Select(kNoPen, kRedBrush);
  EXPECT_EQ(Context().SetLogicalUnits(16), 1);
  EXPECT_EQ(Context().SetLogicalUnits(16), 16);
  const IntPoint points[] = {{32, 32}, {64, 32}, {64, 64}, {32, 64}};
  const int32_t counts[] = {4};
  ASSERT_TRUE(Context().PolyPolygon(points, counts));
  EXPECT_EQ(InkCount(*surface_), 4);
  EXPECT_EQ(At(2, 2), kRed);
  EXPECT_EQ(At(3, 3), kRed);
  const int32_t negative[] = {-1};
  EXPECT_FALSE(Context().PolyPolygon(points, negative));
  const int32_t beyond[] = {5};
  EXPECT_FALSE(Context().PolyPolygon(points, beyond));
}

TEST_F(SurfaceTest, PenGoesOverBrushWithItsWidth) {
  Make(20, 20);
  Select({.width = 4, .color = kBlue}, kRedBrush);
  const uint32_t count = 4;
  ASSERT_TRUE(Context().DrawPolygons(Square(4, 4, 12), std::span(&count, 1)));
  EXPECT_EQ(At(10, 3), kBlue);  // the closing edges too: half the width on either side
  EXPECT_EQ(At(10, 5), kBlue);
  EXPECT_EQ(At(3, 10), kBlue);
  EXPECT_EQ(At(10, 10), kRed);
  EXPECT_EQ(At(10, 1), kWhite);
}

TEST_F(SurfaceTest, ObjectsAreSelectedAndAsked) {
  Make(4, 4);
  EXPECT_EQ(Context().CurrentPen()->Data(), PenData{});
  EXPECT_EQ(Context().CurrentBrush()->Data().color, kWhite);
  const PenData data{.style = PenStyle::kDot, .width = 2.5, .color = 7, .pattern_length = 9};
  Select(data, kNoBrush);
  EXPECT_EQ(Context().CurrentPen()->Data(), data);
  EXPECT_EQ(Context().CurrentBrush()->Data(), kNoBrush);
  EXPECT_EQ(Context().SelectPen(nullptr), pen_.get());
  EXPECT_EQ(Context().SelectPen(nullptr), nullptr);
  EXPECT_EQ(Context().SetTextColor(kRed), 0u);
  EXPECT_EQ(Context().SetTextColor(0), kRed);
}

TEST_F(SurfaceTest, DashesFollowStyleWidthAndPatternLength) {
  struct Case {
    PenData pen;
    std::vector<double> lengths;
  };
  const Case cases[] = {
      {{.style = PenStyle::kSolid}, {}},
      {{.style = PenStyle::kDash}, {18, 6}},
      {{.style = PenStyle::kDashDot, .width = 2}, {18, 12, 6, 12}},
      {{.style = PenStyle::kDot, .width = 2, .pattern_length = 12}, {6, 6}},
      {{.style = PenStyle::kDashDotDot, .pattern_length = 48}, {18, 6, 6, 6, 6, 6}},
  };
  for (const Case& c : cases) EXPECT_EQ(DashLengths(c.pen), c.lengths);

  Make(24, 3);
  Select({.style = PenStyle::kDot, .pattern_length = 8}, kNoBrush);
  const DevicePoint line[] = {{0, 1.5}, {24, 1.5}};
  ASSERT_TRUE(Context().DrawPolyline(line));
  for (int x = 0; x < 24; ++x) EXPECT_EQ(At(x, 1), x % 8 < 4 ? 0u : kWhite) << x;
}

TEST_F(SurfaceTest, ArcsRunCounterClockwiseAsSeen) {
  Make(20, 20);
  Select({.width = 2}, kNoBrush);
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
  const struct {
    int32_t hatch;
    int ink_in_cell;
  } cases[] = {{0, 8}, {1, 8}, {2, 8}, {3, 8}, {4, 15}, {5, 16}, {6, 64}};
  for (const auto& c : cases) {
    Make(8, 8);
    Select(kNoPen, {.style = BrushStyle::kHatched, .color = kRed, .hatch = c.hatch});
    const uint32_t count = 4;
    ASSERT_TRUE(Context().DrawPolygons(Square(0, 0, 8), std::span(&count, 1)));
    EXPECT_EQ(InkCount(*surface_), c.ink_in_cell) << c.hatch;
    if (c.hatch == 2) {
      EXPECT_EQ(At(0, 0), kRed);
    }
    if (c.hatch == 3) {
      EXPECT_EQ(At(0, 7), kRed);
    }
  }
}

TEST_F(SurfaceTest, AbsurdCoordinatesNeitherCrashNorSpill) {
  Make(16, 16);
  Select({.style = PenStyle::kDash, .width = 1e9, .pattern_length = 1e-300}, kRedBrush);
  const DevicePoint wild[] = {{kNan, 1}, {1, kInf}, {-1e300, -1e300}, {1e300, 4}, {4, 1e300}};
  const uint32_t counts[] = {0, 3, 2};
  EXPECT_TRUE(Context().DrawPolygons(wild, counts));
  EXPECT_TRUE(Context().DrawPolyline(wild));
  EXPECT_TRUE(Context().DrawCircle({kNan, 0}, 4));
  EXPECT_TRUE(Context().DrawCircle({0, 0}, 1e300));
  Make(16, 16);
  Select(kNoPen, kRedBrush);
  const DevicePoint all[] = {{-1e12, -1e12}, {1e12, -1e12}, {kNan, 3}, {1e12, 1e12}, {-1e12, 1e12}};
  const uint32_t count = 5;
  EXPECT_TRUE(Context().DrawPolygons(all, std::span(&count, 1)));
  EXPECT_EQ(InkCount(*surface_), 256);
}

TEST(BitmapSurface, RefusesSidesThatItCannotHold) {
  const int cases[][2] = {{0, 1}, {1, 0}, {-5, 5}, {32768, 1}, {1, 1 << 30}};
  for (const auto& c : cases) EXPECT_EQ(CreateBitmapSurface(c[0], c[1], kWhite), nullptr);
  const auto surface = CreateBitmapSurface(3, 2, kRed);
  ASSERT_NE(surface, nullptr);
  EXPECT_EQ(surface->Pixels().size(), 24u);
  EXPECT_EQ(PixelAt(*surface, 2, 1), kRed);
}

}  // namespace
}  // namespace kerno
