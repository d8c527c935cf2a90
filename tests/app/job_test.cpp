#include "app/job.h"

#include <gtest/gtest.h>

#include "support/fake_device_context.h"

namespace kerno {
namespace {

// A closed square contour whose native form repeats its start, as many fonts' do.
GlyphContours Square() {
  return {{{10, 0}, {10, 10}, {0, 10}, {0, 0}, {0, 0}, {10, 0}}, {6}};
}

TEST(BuildParts, LinesCloseTheContourWithoutEdgesOfNoLength) {
  PartsA parts;
  BuildParts(Square(), {}, &parts);
  ASSERT_EQ(1u, parts.parts.size());
  const PartsElement& part = parts.parts[0];
  EXPECT_EQ(u"Kerno", part.name);
  EXPECT_EQ(4u, part.vertices.size());
  ASSERT_EQ(4u, part.lines.items.size());
  for (size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(part.lines.items[i].end, part.lines.items[(i + 1) % 4].start) << i;
  }
  EXPECT_TRUE(part.faces[0].items.empty());
}

TEST(BuildParts, ElementKindsAndDegenerateContours) {
  const struct {
    const char* name;
    GlyphContours contours;
    ContourElements elements;
    size_t lines, faces;
  } cases[] = {
      {"faces", Square(), ContourElements::kFaces, 0, 1},
      {"both", Square(), ContourElements::kBoth, 4, 1},
      {"a point", {{{1, 1}, {1, 1}}, {2}}, ContourElements::kBoth, 0, 1},
      {"there and back", {{{1, 1}, {2, 2}, {1, 1}}, {3}}, ContourElements::kLines, 2, 0},
      {"count of nothing", {{}, {0}}, ContourElements::kBoth, 0, 0},
  };
  for (const auto& c : cases) {
    PartsA parts;
    BuildParts(c.contours, {.elements = c.elements}, &parts);
    ASSERT_EQ(1u, parts.parts.size()) << c.name;
    EXPECT_EQ(c.lines, parts.parts[0].lines.items.size()) << c.name;
    EXPECT_EQ(c.faces, parts.parts[0].faces[0].items.size()) << c.name;
  }
}

TEST(BuildParts, HuesStepRoundTheWheel) {
  GlyphContours many;
  for (int i = 0; i < 14; ++i) {
    many.points.insert(many.points.end(), {{0, 0}, {1, 1}, {0, 0}});
    many.counts.push_back(3);
  }
  PartsA parts;
  BuildParts(many, {}, &parts);
  const auto colour = [](int hue) { return static_cast<int32_t>(HlsColor(hue, 128, 128)); };
  EXPECT_EQ(colour(0), parts.parts[0].pen.color);
  EXPECT_EQ(colour(180), parts.parts[0].brush.color);
  EXPECT_EQ(colour(210), parts.parts[7].pen.color);
  EXPECT_EQ(colour(30), parts.parts[7].brush.color);
  EXPECT_EQ(colour(30), parts.parts[13].pen.color);
}

// A character of one segment from (0, 0) to (4, 8): its block's middle is (2, 4).
TEST(Make, PutsTheMiddleOfTheBlockAtItsPlaceYUp) {
  FakeDeviceContext dc;
  NativeBuffer stroke;
  stroke.Polygon(0, 0).Record(1, {{4, 8}});
  dc.glyphs[U'A'] = {{4, 8, 0, 8, 5, 0}, stroke.bytes()};
  Typesetter typesetter(dc);
  Job job;
  job.text.text = u"A";
  const struct {
    double scale;
    P2 at, end;
  } cases[] = {
      {1, {}, {2, 4}}, {1, {10, 20}, {12, 24}}, {0.5, {10, 20}, {11, 22}}, {-2, {}, {-4, -8}}};
  for (const auto& c : cases) {
    job.scale = c.scale;
    job.at = c.at;
    const auto made = Make(job, typesetter);
    ASSERT_TRUE(made && !made->contours.points.empty());
    EXPECT_EQ(c.end, made->contours.points[0]) << c.scale;
  }
  EXPECT_EQ(1u, dc.created.size()) << "one font for all";
}

}  // namespace
}  // namespace kerno
