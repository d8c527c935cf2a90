#include "parts/parts.h"

#include <gtest/gtest.h>

#include <cmath>

#include "parts/color.h"
#include "support/fake_settings.h"

namespace kerno {
namespace {

const FakeSettings::Key kUseMerge = {u"Debug\\Parts", u"oprator+=...UseMerge"};

Parts Square(double at) {
  Parts part;
  const P3 corners[] = {{at, at, 0}, {at + 1, at, 0}, {at + 1, at + 1, 0}, {at, at + 1, 0}};
  for (int i = 0; i < 4; ++i) part.AddLine(corners[i], corners[(i + 1) % 4]);
  part.AddFace(corners, 7);
  return part;
}

Parts Segment(double x) {
  Parts part;
  part.AddLine({x, 0, 0}, {x + 1, 0, 0});
  return part;
}

TEST(Parts, ElementsShareEqualVertices) {
  ForgetPartsSettings();
  Parts part = Square(0);
  EXPECT_EQ(4u, part.vertices.size());
  part.AddCircle({0, -0.0, 0}, 2.5, 3, {1, 0, 0}, {0, 1, -0.0});
  part.AddText({1, 1, 0}, u"字");
  part.AddHorizontalText({1, 1, 0}, TextLine{});
  EXPECT_EQ(4u, part.vertices.size());
  EXPECT_EQ(0, part.circles.items[0].centre);
  EXPECT_EQ(2, part.horizontal_texts.items[0].anchor);
  EXPECT_FALSE(part.AddFace({}, 0));
  const EdgeItem edge;
  EXPECT_EQ((std::vector<int>{-1, -1, 45, -1, -1, 0, -1}),
            std::vector<int>(edge.values, edge.values + 7));
}

TEST(Parts, CopyIsDeep) {
  Parts part = Square(0);
  part.child = std::make_unique<Parts>(Segment(5));
  part.codes = {1, 2};
  Parts copy = part;
  part.child->AddLine({9, 9, 9}, {8, 8, 8});
  part.AddLine({9, 9, 9}, {8, 8, 8});
  EXPECT_EQ(2u, copy.child->vertices.size());
  EXPECT_EQ(4u, copy.vertices.size());
  copy = *copy.child;  // assignment from what the target owns
  EXPECT_EQ(2u, copy.vertices.size());
  EXPECT_EQ(nullptr, copy.child);
}

TEST(Parts, AppendPutsTheLargerPartFirstUnlessToldOtherwise) {
  struct Case {
    const char* name;
    int use_merge;
    int keeps_order;
    double first_x;  // of the first vertex of the result
  };
  const Case cases[] = {{"merge", 1, 0, 0}, {"setting off", 0, 0, 10}, {"order kept", 1, 1, 10}};
  for (const Case& c : cases) {
    FakeSettings settings;
    settings.ints[kUseMerge] = c.use_merge;
    ForgetPartsSettings();
    Parts left = Segment(10);
    left.keeps_order = c.keeps_order;
    Parts right = Square(0);
    right.AddLine({0, 0, 0}, {10, 0, 0});  // shares a vertex with the left part
    left += right;
    EXPECT_EQ(c.first_x, left.vertices[0].x) << c.name;
    EXPECT_EQ(6u, left.vertices.size()) << c.name;
    EXPECT_EQ(6u, left.lines.items.size()) << c.name;
    ASSERT_EQ(1u, left.faces[0].items.size()) << c.name;
    const FaceItem& face = left.faces[0].items[0];
    EXPECT_EQ(7, face.attribute);
    EXPECT_EQ(1, left.vertices[static_cast<size_t>(face.vertices[2])].x) << c.name;
  }
  ForgetPartsSettings();
}

TEST(Parts, AppendOntoAnEmptyPartCopiesEverything) {
  ForgetPartsSettings();
  Parts source = Square(0);
  source.placement = {{1, 2, 3}, 4};
  source.more_vertices.Append({5, 5, 5});
  Parts empty;
  empty += source;
  EXPECT_EQ(4, empty.placement.code);
  EXPECT_EQ(1u, empty.more_vertices.size());
  empty += empty;  // onto itself: every vertex is there already
  EXPECT_EQ(4u, empty.vertices.size());
  EXPECT_EQ(8u, empty.lines.items.size());
}

TEST(Parts, AppendCarriesIndicesThatNameNoVertex) {
  ForgetPartsSettings();
  Parts left = Square(0);
  Parts right = Segment(3);
  right.lines.items.push_back({-1, 99});
  left += right;
  EXPECT_EQ(-1, left.lines.items.back().start);
  EXPECT_EQ(99, left.lines.items.back().end);
}

TEST(Color, HuesOfTheWheelAtHalfLightness) {
  const struct {
    int hue;
    int red, green, blue;
  } cases[] = {{0, 192, 64, 64},    {60, 192, 192, 64},  {120, 64, 192, 64},
               {180, 64, 192, 192}, {240, 64, 64, 192},  {300, 192, 64, 192},
               {360, 192, 64, 64},  {-60, 192, 64, 192}, {30, 192, 128, 64}};
  for (const auto& c : cases) {
    EXPECT_EQ(RgbColor(c.red, c.green, c.blue), HlsColor(c.hue, 128, 128)) << c.hue;
  }
  EXPECT_EQ(RgbColor(255, 255, 255), HlsColor(77, 255, 200));
}

TEST(Extents, ACoordinateThatIsNoNumberWidensNothingWhereverItStands) {
  const double nan = std::nan("");
  const std::vector<P3> points = {{nan, nan, nan}, {nan, 2, nan}, {3, -1, nan}, {5, nan, nan}};
  PartsA model;
  model.parts.resize(3);
  for (size_t i = 0; i < points.size(); ++i) {
    model.parts[i % 3].vertices.Append(points[i]);
  }
  const Extent3 wanted = {{3, -1, 0}, {5, 2, 0}};
  for (const Extent3& box : {ExtentOf(points), model.Extent()}) {
    EXPECT_EQ(box.min, wanted.min) << box.min.x << " " << box.min.y << " " << box.min.z;
    EXPECT_EQ(box.max, wanted.max);
    for (const double end : {box.min.x, box.min.z, box.max.z}) EXPECT_FALSE(std::isnan(end));
  }
  EXPECT_EQ(PartsA().Extent().max, P3());
}

}  // namespace
}  // namespace kerno
