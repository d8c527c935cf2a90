#include "export/bmp_writer.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

#include "export/draw_parts.h"
#include "outline/typesetter.h"
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

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TEST(BmpWriter, LaysOutOneUnitAPixelWithinLimits) {
  const struct {
    double width, height;
    BmpOptions options;
    int bmp_width, bmp_height;
    double scale;
  } cases[] = {
      {0, 0, {}, 8, 8, 1},
      {100, 50, {}, 108, 58, 1},
      {99.5, 0.25, {}, 108, 9, 1},
      {8184, 1, {}, 8192, 9, 1},
      {16368, 100, {}, 8192, 58, 0.5},
      {1e9, 1e9, {}, 8192, 8192, 8184 / 1e9},
      {1e-9, 1e-9, {}, 264, 264, 256 / 1e-9},
      {100, 50, {.width = 58, .height = 208}, 58, 208, 0.5},
      {0, 0, {.width = 3, .height = 3}, 3, 3, 1},
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
}

TEST(BmpWriter, HeaderAndRowsAreThoseOfTheFormat) {
  const std::string header = BmpHeader(3, 2);
  const std::string expected(
      "BM\x4e\0\0\0\0\0\0\0\x36\0\0\0"  // 54 + 2 rows of 12
      "\x28\0\0\0\x03\0\0\0\x02\0\0\0\x01\0\x18\0\0\0\0\0"
      "\x18\0\0\0\xc4\x0e\0\0\xc4\x0e\0\0\0\0\0\0\0\0\0\0",
      54);
  EXPECT_EQ(header, expected);
  const auto surface = CreateBitmapSurface(3, 2, 0x030201);
  ASSERT_NE(surface, nullptr);
  EXPECT_EQ(BmpRow(*surface, 1), std::string("\3\2\1\3\2\1\3\2\1\0\0\0", 12));
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

TEST(BmpWriter, AwkwardModelsGiveAPictureAndAWarning) {
  PartsA nan = TriangleModel(10);
  nan.parts[0].vertices.Append({kNan, 0, 0});
  nan.parts[0].lines.items.push_back({0, 3});
  const struct {
    PartsA model;
    BmpOptions options;
    bool ok;
    size_t messages, bytes;
  } cases[] = {
      {{}, {}, true, 0, 54 + 24 * 8},
      {nan, {}, true, 1, 54 + 56 * 18},
      {TriangleModel(1e-9), {}, true, 1, 54 + 792 * 264},
      {TriangleModel(1e9), {.width = 10, .height = 10}, true, 0, 54 + 320},
      {TriangleModel(10), {.width = 8193, .height = 10}, false, 0, 0},
      {TriangleModel(10), {.width = 10, .height = 0}, false, 0, 0},
      {TriangleModel(10), {.width = -1, .height = -1}, false, 0, 0},
  };
  for (const auto& c : cases) {
    RecordingNotices notices;
    MemoryFile out;
    EXPECT_EQ(WriteBmp(c.model, c.options, "a.bmp", &out).ok(), c.ok);
    EXPECT_EQ(notices.messages.size(), c.messages) << c.bytes;
    EXPECT_EQ(out.bytes.size(), c.bytes);
  }
  for (const size_t capacity : {0, 53, 54, 500}) {
    MemoryFile full(capacity);
    EXPECT_EQ(WriteBmp(TriangleModel(50), {}, "a.bmp", &full).failure, Failure::kNoSpace);
  }
}

// The number of white regions that a picture encloses, as ImageMagick counts them.
int EnclosedRegions(const test::Picture& picture) {
  const test::TemporaryFolder folder;
  test::WriteBytes(folder / "rgb",
                   {reinterpret_cast<const char*>(picture.rgb.data()), picture.rgb.size()});
  std::istringstream lines(test::OutputOf(
      "convert -size " + std::to_string(picture.width) + "x" + std::to_string(picture.height) +
      " -depth 8 rgb:" + (folder / "rgb").string() +
      " -threshold 78% -define connected-components:verbose=true"
      " -define connected-components:area-threshold=9 -connected-components 4 null:"));
  int regions = -1;  // the surroundings are one
  for (std::string line; std::getline(lines, line);) regions += line.find("(255") != line.npos;
  return regions;
}

TEST(DrawContours, CountersOfRealLettersAreOpen) {
  const struct {
    char16_t letter;
    const char16_t* face;
    int counters;
  } cases[] = {{u'O', u"DejaVu Sans", 1},
               {u'8', u"DejaVu Sans", 2},
               {u'I', u"DejaVu Sans", 0},
               {u'あ', u"IPAGothic", 2},
               {u'龍', u"IPAMincho", 2}};
  for (const auto& c : cases) {
    const auto surface = CreateBitmapSurface(240, 240, 0xFFFFFF);
    DrawingContext& dc = surface->Context();
    TextRequest request;
    request.text = c.letter;
    request.face.name = c.face;
    request.height = 220;
    GlyphContours contours;
    ASSERT_GT(StringOutline(dc, request, &contours), 0u);
    for (P2& p : contours.points) p.y = -p.y;
    const auto brush = dc.CreateBrushIndirect({BrushStyle::kSolid, 0});
    dc.SelectBrush(brush.get());
    DrawContours(dc, contours, FitExtent(ContoursBox(contours), {0, 0, 240, 240}, 8), {});
    EXPECT_EQ(EnclosedRegions(test::PictureOf(*surface)), c.counters)
        << "U+" << std::hex << static_cast<int>(c.letter);
  }
}

}  // namespace
}  // namespace kerno
