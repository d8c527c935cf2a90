// The scene and the list of parts.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "export/ipl_writer.h"
#include "export/x3d_writer.h"
#include "support/memory_file.h"
#include "support/recording_notices.h"
#include "support/run.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

PartsElement Triangle(Color pen, double side) {
  PartsElement part;
  part.pen.color = static_cast<int32_t>(pen);
  EXPECT_TRUE(part.AddClosedLines(std::vector<P3>{{0, 0}, {side, 0}, {0, side, 1}}));
  return part;
}

TEST(X3dWriter, ReadersCountWhatWasWritten) {
  PartsA model;
  for (const Color pen : {RgbColor(255, 0, 0), RgbColor(0, 0, 255), RgbColor(255, 0, 0)}) {
    model.parts.push_back(Triangle(pen, 10));
  }
  EXPECT_TRUE(model.parts[1].AddFace(std::vector<P3>{{0, 0}, {4, 0}, {4, 4}, {2, 1}, {0, 4}}, 0));
  EXPECT_TRUE(model.parts[1].AddCircle({0, 0}, 5, 0, {0, 0}, {0, 0}));
  EXPECT_TRUE(model.parts[2].AddCircle({0, 0}, 5, 0, {5, 0}, {0, 5}));
  const test::TemporaryFolder folder;
  const std::string file = (folder / "m.x3d").string();
  EXPECT_TRUE(ExportX3d(model, file).ok());
  const std::string info = test::OutputOf("assimp info " + file);
  EXPECT_THAT(info,
              testing::ContainsRegex("\nMeshes: +3\n"));  // red lines, blue lines, black faces
  EXPECT_THAT(info, testing::ContainsRegex(
                        "\nFaces: +102\n"));  // lines 9, circle 72, quarter 18, triangles 3
}

TEST(IplWriter, ListsThePartsAndTheWhole) {
  PartsA model;
  model.parts.push_back(Triangle(0, 2.5));
  model.parts[0].name = u"a\t\"b\" 日本";
  model.parts.push_back({});
  model.parts.push_back(Triangle(0, -1));
  model.parts[2].vertices.Append({kNan, 0});
  model.parts[2].vertices.Append({0, 0, kInfinity});
  test::RecordingNotices notices;
  test::MemoryFile file;
  EXPECT_TRUE(WriteIpl(model, "m.ipl", &file).ok());
  EXPECT_EQ(
      file.bytes,
      ";IPL\tnumber\tlayer\tmin x\tmin y\tmin z\tmax x\tmax y\tmax z\twidth\theight\tdepth\r\n"
      "part\t1\t\"a\\t\\x22b\\x22 日本\"\t0\t0\t0\t2.5\t2.5\t1\t2.5\t2.5\t1\r\n"
      "part\t2\t\"\"\t0\t0\t0\t0\t0\t0\t0\t0\t0\r\n"
      "part\t3\t\"\"\t-1\t-1\t0\t0\t0\t1\t1\t1\t1\r\n"
      "whole\t3\t\"\"\t-1\t-1\t0\t2.5\t2.5\t1\t3.5\t3.5\t1\r\n");
  EXPECT_EQ(notices.messages.size(), 1u);
}

}  // namespace
}  // namespace kerno
