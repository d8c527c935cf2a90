#include "parts/parts.h"

#include <gtest/gtest.h>

#include "base/profile_settings.h"
#include "base/text.h"
#include "support/fake_settings.h"
#include "support/settings_fixture.h"

namespace kerno {
namespace {

Parts Square(double at) {
  Parts part;
  const P3 corners[] = {{at, at, 0}, {at + 1, at, 0}, {at + 1, at + 1, 0}, {at, at + 1, 0}};
  EXPECT_TRUE(part.AddClosedLines(corners));
  EXPECT_TRUE(part.AddFace(corners, 7));
  return part;
}

Parts Segment(double x) {
  Parts part;
  EXPECT_TRUE(part.AddLine({x, 0, 0}, {x + 1, 0, 0}));
  return part;
}

TEST(Parts, CopyIsDeep) {
  Parts part = Square(0);
  part.child = std::make_unique<Parts>(Segment(5));
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
  const struct {
    const char* name;
    int use_merge;
    int keeps_order;
    double first_x;  // of the first vertex of the result
  } cases[] = {{"merge", 1, 0, 0}, {"setting off", 0, 0, 10}, {"order kept", 1, 1, 10}};
  for (const auto& c : cases) {
    FakeSettings settings;
    settings.ints[{u"Debug\\Parts", u"oprator+=...UseMerge"}] = c.use_merge;
    ForgetPartsSettings();
    Parts left = Segment(10);
    left.keeps_order = c.keeps_order;
    Parts right = Square(0);
    right.AddLine({0, 0, 0}, {10, 0, 0});   // shares a vertex with the left part
    right.lines.items.push_back({-1, 99});  // names no vertex: carried as it is
    left += right;
    EXPECT_EQ(c.first_x, left.vertices[0].x) << c.name;
    EXPECT_EQ(6u, left.vertices.size()) << c.name;
    ASSERT_EQ(7u, left.lines.items.size()) << c.name;
    EXPECT_EQ(99, left.lines.items[c.first_x == 0 ? 5 : 6].end) << c.name;
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

// Settings in the INI file change what the model does.
using PartsSettings = test::SettingsFixture;
TEST_F(PartsSettings, FaceNamesAndTheLogOfCopies) {
  WriteIni(Utf16ToUtf8(u"[Debug\\Parts]\r\nCopyLog=1\r\n[Parts]\r\n横書フェイス名=顔\r\n"));
  Restart();
  InstallProfileSettings();
  PartsA model;
  model.parts.resize(3);
  const PartsA copy = model;
  EXPECT_EQ(DefaultFaceName(WritingDirection::kHorizontal), u"顔");
  const std::u16string log = DumpedText();
  EXPECT_NE(log.find(u"\tPartsA(const PartsA&)\t3\r\n"), log.npos) << Utf16ToUtf8(log);
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
