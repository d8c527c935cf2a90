// The scene and the list of parts.
#include <gtest/gtest.h>

#include <limits>
#include <sstream>

#include "export/build_time.h"
#include "export/ipl_writer.h"
#include "export/x3d_writer.h"
#include "support/fake_clock.h"
#include "support/fake_system.h"
#include "support/memory_file.h"
#include "support/recording_notices.h"
#include "support/run.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

template <class Write>
std::string Written(const Write& write, const PartsA& model) {
  test::MemoryFile file;
  EXPECT_TRUE(write(model, "m.out", &file).ok());
  return file.bytes;
}

PartsElement Triangle(Color pen, double side) {
  PartsElement part;
  part.pen.color = static_cast<int32_t>(pen);
  EXPECT_TRUE(part.AddClosedLines(std::vector<P3>{{0, 0}, {side, 0}, {0, side, 1}}));
  return part;
}

TEST(X3dWriter, AWholeScene) {
  const test::FakeClock clock;
  const test::FakeSystem system;
  PartsA model;
  model.parts.push_back(Triangle(RgbColor(255, 0, 51), 2.5));
  model.parts[0].brush.color = static_cast<int32_t>(RgbColor(0, 255, 0));
  EXPECT_TRUE(model.parts[0].AddFace(std::vector<P3>{{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 0}}, 0));
  EXPECT_EQ(
      Written(WriteX3d, model),
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<!DOCTYPE X3D PUBLIC \"ISO//Web3D//DTD X3D 3.3//EN\" "
      "\"http://www.web3d.org/specifications/x3d-3.3.dtd\">\n"
      "<!--\r\nX3D Exporter \t1.22\t" +
          std::string(BuildTime()) +
          "\r\nEXE          \t    \t/nowhere/bin/kerno"
          "\r\nTime         \t    \t2026/11/21 09:00:00\r\n-->\n"
          "<X3D profile=\"Interchange\" version=\"3.3\""
          " xmlns:xsd=\"http://www.w3.org/2001/XMLSchema-instance\""
          " xsd:noNamespaceSchemaLocation=\"http://www.web3d.org/specifications/x3d-3.3.xsd\">\n"
          " <Scene>\n"
          "  <Shape>\n   <Appearance>\n    <Material emissiveColor=\"1 0 0.2\"/>\n"
          "   </Appearance>\n"
          "   <IndexedLineSet coordIndex=\"0 1 -1 1 2 -1 2 0 -1\">\n"
          "    <Coordinate point=\"0 0 0 2.5 0 0 0 2.5 1\"/>\n   </IndexedLineSet>\n  </Shape>\n"
          "  <Shape>\n   <Appearance>\n    <Material diffuseColor=\"0 1 0\"/>\n"
          "   </Appearance>\n"
          "   <IndexedFaceSet solid=\"false\" coordIndex=\"0 1 2 -1 0 2 3 -1\">\n"
          "    <Coordinate point=\"0 1 0 0 0 0 1 0 0 1 1 0\"/>\n   </IndexedFaceSet>\n  </Shape>\n"
          " </Scene>\n</X3D>\n");
}

// What an outside reader counts: meshes, segments and triangles together.
struct Counts {
  int meshes = 0, faces = 0;
};

Counts ReadBack(const PartsA& model) {
  const test::TemporaryFolder folder;
  const std::string file = (folder / "m.x3d").string();
  EXPECT_TRUE(ExportX3d(model, file).ok());
  const std::string info = test::OutputOf("assimp info " + file);
  const auto value = [&](const std::string& name) {
    const size_t at = info.find("\n" + name + ":");
    return at == info.npos ? -1 : std::atoi(info.c_str() + at + name.size() + 2);
  };
  return {value("Meshes"), value("Faces")};
}

TEST(X3dWriter, ReadersCountWhatWasWritten) {
  PartsA model;
  for (const Color pen : {RgbColor(255, 0, 0), RgbColor(0, 0, 255), RgbColor(255, 0, 0)}) {
    model.parts.push_back(Triangle(pen, 10));
  }
  EXPECT_TRUE(model.parts[1].AddFace(std::vector<P3>{{0, 0}, {4, 0}, {4, 4}, {2, 1}, {0, 4}}, 0));
  EXPECT_TRUE(model.parts[1].AddCircle({0, 0}, 5, 0, {0, 0}, {0, 0}));
  EXPECT_TRUE(model.parts[2].AddCircle({0, 0}, 5, 0, {5, 0}, {0, 5}));
  const Counts counts = ReadBack(model);
  EXPECT_EQ(counts.meshes, 3);                   // red lines, blue lines, black faces
  EXPECT_EQ(counts.faces, 3 * 3 + 72 + 18 + 3);  // lines, circle, quarter, triangles
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
  EXPECT_EQ(
      Written(WriteIpl, model),
      ";IPL\tnumber\tlayer\tmin x\tmin y\tmin z\tmax x\tmax y\tmax z\twidth\theight\tdepth\r\n"
      "part\t1\t\"a\\t\\x22b\\x22 日本\"\t0\t0\t0\t2.5\t2.5\t1\t2.5\t2.5\t1\r\n"
      "part\t2\t\"\"\t0\t0\t0\t0\t0\t0\t0\t0\t0\r\n"
      "part\t3\t\"\"\t-1\t-1\t0\t0\t0\t1\t1\t1\t1\r\n"
      "whole\t3\t\"\"\t-1\t-1\t0\t2.5\t2.5\t1\t3.5\t3.5\t1\r\n");
  EXPECT_EQ(notices.messages.size(), 1u);
  const std::string empty = Written(WriteIpl, {});
  EXPECT_EQ(empty.substr(empty.find("whole")), "whole\t0\t\"\"\t0\t0\t0\t0\t0\t0\t0\t0\t0\r\n");
}

}  // namespace
}  // namespace kerno
