#include "export/bmp_writer.h"

#include <gtest/gtest.h>

#include <limits>

#include "export/draw_parts.h"
#include "support/memory_file.h"
#include "support/picture_compare.h"
#include "support/picture_models.h"
#include "support/recording_notices.h"
#include "support/run.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

using test::MemoryFile;
using test::RecordingNotices;
using test::TriangleModel;

TEST(BmpWriter, LaysOutOneUnitAPixelWithinLimits) {
  const struct {
    double width, height;
    BmpOptions options;
    int bmp_width, bmp_height;
    double scale;
  } cases[] = {
      {0, 0, {}, 8, 8, 1},
      {100, 50, {}, 108, 58, 1},
      {16368, 100, {}, 8192, 58, 0.5},
      {1e-9, 1e-9, {}, 264, 264, 256 / 1e-9},
      {100, 50, {.width = 58, .height = 208}, 58, 208, 0.5},
      {1e-9, 1e9, {.width = 1, .height = 1}, 1, 1, 1e-9},
  };
  for (const auto& c : cases) {
    const BmpLayout layout = LayOutBmp({{5, 5, 0}, {5 + c.width, 5 + c.height, 0}}, c.options);
    EXPECT_EQ(layout.width, c.bmp_width) << c.width << " x " << c.height;
    EXPECT_EQ(layout.height, c.bmp_height) << c.width << " x " << c.height;
    EXPECT_NEAR(PixelsPerUnit(layout.fit), c.scale, c.scale * 1e-6) << c.width << " x " << c.height;
  }
  const BmpLayout dot = LayOutBmp({{0, 0, 0}, {1e-310, 1e-320, 0}}, {});  // no scale is that large
  EXPECT_EQ(dot.width, 8);
  EXPECT_EQ(PixelsPerUnit(dot.fit), 1);
  for (const double far : {1.7e308, std::numeric_limits<double>::infinity()}) {
    const Extent3 box = {{-far, 0, 0}, {far, 5, 0}};
    for (const BmpOptions& options : {BmpOptions{}, BmpOptions{.width = 64, .height = 64}}) {
      const BmpLayout widest = LayOutBmp(box, options);
      EXPECT_EQ(widest.width, options.width > 0 ? 64 : kMaxBmpSide) << far;
      EXPECT_GT(PixelsPerUnit(widest.fit), 0) << far;
      EXPECT_NEAR(Placed(widest.fit, P2{0, 0}).x, widest.width / 2, 1) << far;
    }
  }
}

TEST(BmpWriter, ReaderSeesThePixelsOfTheSurface) {
  const test::TemporaryFolder folder;
  PartsA model = TriangleModel(61.5);
  model.parts[0].pen.width = 2.5;
  const P3 face[] = {{10, 5, 0}, {40.3, 7, 0}, {33, 22.2, 0}};
  model.parts[0].brush.color = 0x8040C0;
  model.parts[0].AddFace(face, 0);
  const auto file = folder / "square.bmp";
  ASSERT_TRUE(ExportBmp(model, file).ok());
  EXPECT_EQ(folder.Names(), (std::set<std::string>{"square.bmp"}));

  const BmpLayout layout = LayOutBmp(PictureBox(model, nullptr), {});
  const test::Picture drawn =
      test::Drawn(model, layout.width, layout.height, layout.fit, {.detail = 1.0 / 16});
  EXPECT_EQ(test::ReadPicture(file).rgb, drawn.rgb);
  EXPECT_EQ(test::OutputOf("identify -format '%m %w %h %[channels]' " + file.string()),
            "BMP3 72 72 srgb");
}

TEST(BmpWriter, RefusesSizesOfNoPictureAndTellsOfAnotherScale) {
  for (const BmpOptions& options : {BmpOptions{8193, 10}, {10, 0}, {-1, -1}}) {
    MemoryFile out;
    EXPECT_FALSE(WriteBmp(TriangleModel(10), options, "a.bmp", &out).ok());
    EXPECT_EQ(out.bytes, "");
  }
  const RecordingNotices notices;
  MemoryFile out;
  EXPECT_TRUE(WriteBmp(TriangleModel(0.5), {}, "a.bmp", &out).ok());
  EXPECT_EQ(notices.messages.size(), 1u);
}

}  // namespace
}  // namespace kerno
