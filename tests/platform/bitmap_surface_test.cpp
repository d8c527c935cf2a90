#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/drawing.h"

namespace kerno {
namespace {

constexpr uint32_t kWhite = 0xFFFFFF;
constexpr uint32_t kRed = 0x0000FF;
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
const PenData kNoPen{.style = PenStyle::kNull};
const BrushData kRedBrush{.style = BrushStyle::kSolid, .color = kRed};

using CreateSurface = std::unique_ptr<BitmapSurface> (*)(int width, int height,
                                                         uint32_t background);

// A surface of either kind with a pen and a brush, white at first.
class SurfaceTest : public testing::TestWithParam<CreateSurface> {
 protected:
  void Make(int width, int height, const PenData& pen, const BrushData& brush) {
    surface_ = GetParam()(width, height, kWhite);
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
  // How many pixels are not white.
  int InkCount() const {
    int count = 0;
    for (int y = 0; y < surface_->Height(); ++y) {
      for (int x = 0; x < surface_->Width(); ++x) count += At(x, y) != kWhite;
    }
    return count;
  }
  bool DrawPolygon(const std::vector<DevicePoint>& points) {
    const auto count = static_cast<uint32_t>(points.size());
    return Context().DrawPolygons(points, std::span(&count, 1));
  }

  std::unique_ptr<BitmapSurface> surface_;
  std::unique_ptr<Pen> pen_;
  std::unique_ptr<Brush> brush_;
};

TEST_P(SurfaceTest, WholePolygonsCountInLogicalUnits) {
  Make(10, 10, kNoPen, kRedBrush);
  EXPECT_EQ(Context().SetLogicalUnits(0), 1);
  EXPECT_EQ(Context().SetLogicalUnits(16), 1);
  const IntPoint points[] = {{32, 32}, {64, 32}, {64, 64}, {32, 64}};
  for (const int32_t count : {-1, 5}) {
    EXPECT_FALSE(Context().PolyPolygon(points, std::span(&count, 1)));
  }
  const int32_t count = 4;
  ASSERT_TRUE(Context().PolyPolygon(points, std::span(&count, 1)));
  EXPECT_EQ(InkCount(), 4);
  EXPECT_EQ(At(2, 2), kRed);
  EXPECT_EQ(At(3, 3), kRed);
}

TEST_P(SurfaceTest, AbsurdCoordinatesNeitherCrashNorSpill) {
  Make(16, 16, {.style = PenStyle::kDash, .width = 1e9, .pattern_length = 1e-300}, kRedBrush);
  const DevicePoint wild[] = {{kNan, 1}, {1, kInf}, {-1e300, -1e300}, {1e300, 4}, {4, 1e300}};
  const uint32_t counts[] = {0, 3, 2};
  EXPECT_TRUE(Context().DrawPolygons(wild, counts));
  EXPECT_TRUE(Context().DrawPolyline(wild));
  EXPECT_TRUE(Context().DrawCircle({kNan, 0}, 4));
  EXPECT_TRUE(Context().DrawCircle({0, 0}, 1e300));
  Make(16, 16, kNoPen, kRedBrush);
  EXPECT_TRUE(DrawPolygon({{-1e12, -1e12}, {1e12, -1e12}, {kNan, 3}, {1e12, 1e12}, {-1e12, 1e12}}));
  EXPECT_EQ(InkCount(), 256);
  for (double radius : {0.0, 0.01, 1.0, 500.0, 1e9, kNan, kInf}) {
    for (const DevicePoint& p : ArcPoints({0, 0}, radius, 30, -360)) {
      EXPECT_NEAR(std::hypot(p.x, p.y), radius, radius * 1e-9) << radius;
    }
  }
  for (const auto& [width, height] : {std::pair{0, 1}, {1, 0}, {-5, 5}, {32768, 1}, {1, 1 << 30}}) {
    EXPECT_EQ(GetParam()(width, height, kWhite), nullptr);
  }
}

INSTANTIATE_TEST_SUITE_P(Surfaces, SurfaceTest,
                         testing::Values(&CreateBitmapSurface, &CreatePreviewSurface));

}  // namespace
}  // namespace kerno
