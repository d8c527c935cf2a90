// A file that cannot be written whole leaves the old one and nothing beside it, in every format.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <functional>

#include "export/bmp_writer.h"
#include "export/dxf_export.h"
#include "export/emf_writer.h"
#include "export/ipl_writer.h"
#include "export/svg_writer.h"
#include "export/x3d_writer.h"
#include "parts/ipx.h"
#include "support/child_process.h"
#include "support/picture_models.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

TEST(ExportPosix, AFailureLeavesTheOldFileAndNoLitter) {
  const test::TemporaryFolder folder;
  const std::filesystem::path file = folder / "out";
  PartsA model;
  for (int i = 1; i <= 1000; ++i) model.parts.push_back(test::TriangleModel(i).parts[0]);
  const struct {
    const char* format;
    std::function<Status()> write;
  } cases[] = {
      {"DXF", [&] { return ExportDxf(model, file); }},
      {"SVG", [&] { return ExportSvg(model, file); }},
      {"X3D", [&] { return ExportX3d(model, file); }},
      {"EMF", [&] { return ExportEmf(model, file); }},
      {"BMP", [&] { return ExportBmp(model, file); }},
      {"IPL", [&] { return ExportIpl(model, file); }},
      {"IPX", [&] { return WriteIpxFile(file, model, u"kerno"); }},
  };
  for (const auto& c : cases) {
    test::WriteBytes(file, "old");
    EXPECT_EQ(test::InChild([&] {
                const rlimit limit{5000, 5000};
                if (setrlimit(RLIMIT_FSIZE, &limit) != 0) return 1;
                return c.write().failure == Failure::kNoSpace ? 0 : 2;
              }),
              0)
        << c.format;
    EXPECT_EQ(test::ReadBytes(file), "old") << c.format;
    EXPECT_EQ(folder.Names(), std::set<std::string>{"out"}) << c.format;
  }
}

}  // namespace
}  // namespace kerno
