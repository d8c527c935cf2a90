#include "export/export.h"

#include <gtest/gtest.h>

#include "base/text.h"
#include "parts/ipx_cache.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

using test::TemporaryFolder;

TEST(Export, TheExtensionChoosesExactly) {
  const TemporaryFolder folder;
  const struct {
    const char* name;
    int32_t result;
  } cases[] = {
      {"a.dxf", 1}, {"a.svg", 1},  {"a.x3d", 1}, {"b.c.dxf", 1}, {".dxf", 1},  {"a.DXF", 0},
      {"a.Dxf", 0}, {"a.dxf ", 0}, {"a.stl", 0}, {"a.wrl", 0},   {"a.3ds", 0}, {"a.obj", 0},
      {"a.imo", 0}, {"a.off", 0},  {"a.nxr", 0}, {"a.dae", 0},   {"a.ix3", 0}, {"a.ipa", 0},
      {"a.txt", 0}, {"a", 0},      {"a.", 0},    {"dxf", 0},     {"a.ipx", 1}, {"b.Ipx", 1},
  };
  for (const auto& c : cases) {
    Status status;
    EXPECT_EQ(Export({}, folder / c.name, {}, &status), c.result) << c.name;
    EXPECT_EQ(status.ok(), c.result == 1) << c.name;
    EXPECT_EQ(status.why.empty(), c.result == 1) << c.name;
    EXPECT_EQ(folder.Names().size(), c.result == 1 ? 1u : 0u) << c.name;
    std::filesystem::remove(folder / c.name);
  }
}

TEST(Export, TheStepAfterwardsRunsAfterSuccessOnly) {
  const TemporaryFolder folder;
  std::vector<std::filesystem::path> written;
  OutputOptions options;
  options.after_export = [&](const PartsA& model, const std::filesystem::path& file) {
    EXPECT_EQ(model.parts.size(), 1u);
    written.push_back(file);
  };
  PartsA model;
  model.parts.resize(1);
  EXPECT_EQ(Export(model, folder / "a.dxf", options), 1);
  EXPECT_EQ(Export(model, folder / "a.stl", options), 0);
  EXPECT_EQ(Export(model, folder / "missing/a.dxf", options), 0);
  EXPECT_EQ(written, (std::vector<std::filesystem::path>{folder / "a.dxf"}));
}

TEST(Export, PartsFilesNameTheProgramAndAreCopiedOnce) {
  const TemporaryFolder folder;
  IpxCache cache(folder.path(), u"program");
  OutputOptions options;
  options.program = u"program";
  options.after_export = [&](const PartsA& model, const std::filesystem::path& file) {
    cache.KeepCopy(model, file);
  };
  PartsA model;
  model.parts.resize(1);
  EXPECT_EQ(Export(model, folder / "a.ipx", options), 1);
  EXPECT_EQ(Export(model, folder / "b.dxf", options), 1);
  const std::string written = test::ReadBytes(folder / "a.ipx");
  EXPECT_NE(written.find("\t\"program\"\r\n"), written.npos);
  EXPECT_EQ(test::ReadBytes(cache.folder() / "a.ipx"), written);
  EXPECT_EQ(test::ReadBytes(cache.folder() / "b.ipx"), written);
  model.parts[0].name = u"layer";
  EXPECT_EQ(Export(model, cache.folder() / "a.ipx", options), 1);
  EXPECT_NE(test::ReadBytes(cache.folder() / "a.ipx").find("layer"), written.npos);
}

TEST(Export, AFailureSaysWhatAndWhy) {
  const TemporaryFolder folder;
  Status status;
  EXPECT_EQ(Export({}, folder / "missing/a.dxf", {}, &status), 0);
  EXPECT_EQ(status.what, (folder / "missing/a.dxf").u16string());
  EXPECT_EQ(status.why, u"its folder does not exist");
}

}  // namespace
}  // namespace kerno
