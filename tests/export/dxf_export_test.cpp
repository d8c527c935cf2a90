#include "export/dxf_export.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/memory_file.h"
#include "support/recording_notices.h"
#include "support/run.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

using test::TemporaryFolder;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// A part with a closed chain of lines.
PartsElement Contour(std::u16string layer, Color color, std::initializer_list<P3> points) {
  PartsElement part;
  part.name = std::move(layer);
  part.pen.color = static_cast<int32_t>(color);
  EXPECT_TRUE(part.AddClosedLines(points));
  return part;
}

TextLine TextSet(std::u16string text, double height, double width, double rotation,
                 double oblique) {
  return {-1, std::move(text), height, width, rotation, oblique, u"", 0, {}};
}

constexpr Color kRed = RgbColor(255, 0, 0);
constexpr Color kGreen = RgbColor(0, 255, 0);
constexpr Color kBlue = RgbColor(0, 0, 255);

std::string Written(const PartsA& model) {
  test::MemoryFile file;
  EXPECT_TRUE(WriteDxf(model, {}, "m.dxf", &file).ok());
  return file.bytes;
}

// What the independent reader finds in the file that an export leaves.
std::string ReadBack(const PartsA& model) {
  const TemporaryFolder folder;
  EXPECT_TRUE(ExportDxf(model, folder / "m.dxf").ok());
  return test::OutputOfPython("export/read_dxf.py " + (folder / "m.dxf").string());
}

TEST(DxfExport, ReadersFindTheModel) {
  PartsA contours;
  contours.parts.push_back(Contour(u"Text layer", kRed, {{0, 0}, {10, 0}, {10.5, 7.25}, {0, 7}}));
  contours.parts.push_back(Contour(u"", kGreen, {{-20, 30.125}, {2, 3}, {1.0 / 3, 4}}));
  contours.parts.push_back(Contour(u"日本語", kBlue, {{5, 5}, {6, 5}, {6, 6}}));

  PartsA kinds;
  PartsElement all;
  all.pen.color = static_cast<int32_t>(kRed);
  const P3 centre = {50, 50};
  EXPECT_TRUE(all.AddText({1, 1}, u"plain"));
  EXPECT_TRUE(all.AddCircle(centre, 5, 0, centre, centre));
  EXPECT_TRUE(all.AddCircle(centre, 7, 0, {57, 50}, {50, 43}));
  EXPECT_TRUE(all.AddCircle(centre, 7, 0, {50, 43}, {57, 50}));
  all.circles.items.back().attribute = 1;
  EXPECT_TRUE(all.AddFace(std::vector<P3>{{0, 0}, {1, 0}, {0, 1}}, 0));
  EXPECT_TRUE(all.AddFace(std::vector<P3>{{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 0}}, 0));
  all.faces[1].items.push_back(all.faces[0].items[0]);
  EXPECT_TRUE(all.AddFace(std::vector<P3>{{0, 0}, {4, 0}, {4, 4}, {2, 1}, {0, 4}}, 0));
  all.faces[2].items.push_back(all.faces[0].items.back());
  all.faces[0].items.pop_back();
  EXPECT_TRUE(all.AddLine({0, 0}, {1, 1}));
  all.edges.items.push_back({.start = 0, .end = 1});
  EXPECT_TRUE(all.AddHorizontalText({3, 4}, TextSet(u"横", 10, 4, 30, 15)));
  EXPECT_TRUE(all.AddVerticalText({5, 6}, TextSet(u"縦", 10, 5, 0, 0)));
  EXPECT_TRUE(all.AddPointSet(std::vector<P3>{{9, 9}}, 0, 0, 0));
  kinds.parts.push_back(std::move(all));

  const struct {
    const PartsA& model;
    std::string facts;
  } cases[] = {
      {contours,
       "entities LINE:10\nlayers Textlayer:1 Unknown:3 日本語:5\n"
       "used Textlayer:1x4 Unknown:3x3 日本語:5x3\nextents -20 0 10.5 30.125\n"},
      {kinds,
       "entities 3DFACE:6 ARC:2 CIRCLE:1 LINE:2 TEXT:3\n"
       "layers Unknown:1\nused Unknown:1x14\nextents 0 0 50 50\n"
       "text plain style Standard height 2.5 rotation 0 width 1 oblique 0\n"
       "text 横 style Standard height 10 rotation 30 width 0.8 oblique 15\n"
       "text 縦 style VTEXT height 10 rotation 0 width 1 oblique 0\n"
       "arc 7 0 270\narc 7 270 0\n"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ReadBack(c.model), "errors 0 fixes 0\n" + c.facts);
  }
}

TEST(DxfExport, AModelIsFlatWhenAllItsVerticesAre) {
  const struct {
    double z[2];
    bool flat;
  } cases[] = {{{0, 0}, true}, {{5, 5}, true}, {{0, 1}, false}, {{0, -0.0}, true}};
  for (const auto& c : cases) {
    PartsA model;
    model.parts.push_back(Contour(u"", kRed, {{0, 0, c.z[0]}, {1, 0, c.z[1]}}));
    const std::string file = Written(model);
    EXPECT_EQ(file.substr(0, file.find("ENDSEC")).find(" 30\r\n") == file.npos, c.flat)
        << c.z[0] << " " << c.z[1];
  }
}

TEST(DxfExport, WarnsOnceForEachFile) {
  PartsA plain, large, broken;
  plain.parts.push_back(Contour(u"", kRed, {{0, 0}, {99999.5, 1.2345678}}));
  for (int i = 0; i < 3; ++i) {
    large.parts.push_back(Contour(u"", kRed, {{0, 1234567.5}, {1e9, 1.2345678}}));
    broken.parts.push_back(Contour(u"", kRed, {{kNan, 0}, {1, 1}}));
    broken.parts.back().texts.items = {{99, u"x"}};
    broken.parts.back().circles.items = {{1, kNan, 0, -1, -1}};
    EXPECT_TRUE(broken.parts.back().AddPointSet({}, 0, 0, 0));
  }
  const std::pair<const PartsA&, std::vector<std::u16string>> cases[] = {
      {plain, {}},
      {large, {u"more than six digits"}},
      {broken, {u"12 elements were left out", u"point sets have no form in DXF"}}};
  for (const auto& [model, fragments] : cases) {
    test::RecordingNotices notices;
    (void)Written(model);
    ASSERT_EQ(notices.messages.size(), fragments.size());
    for (size_t i = 0; i < fragments.size(); ++i) {
      EXPECT_NE(notices.messages[i].find(fragments[i]), std::u16string::npos);
    }
  }
}

}  // namespace
}  // namespace kerno
