#include "export/export.h"

#include <gtest/gtest.h>

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
      {"a.svg", 1},  {"b.c.dxf", 1}, {".dxf", 1}, {"b.Ipx", 1}, {"a.DXF", 0},
      {"a.dxf ", 0}, {"a.stl", 0},   {"a", 0},    {"a.", 0},    {"dxf", 0},
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
  EXPECT_EQ(Export(model, folder / "missing/c.dxf", options), 0);
  EXPECT_FALSE(std::filesystem::exists(cache.folder() / "c.ipx"));
  const std::string written = test::ReadBytes(folder / "a.ipx");
  EXPECT_NE(written.find("\t\"program\"\r\n"), written.npos);
  EXPECT_EQ(test::ReadBytes(cache.folder() / "a.ipx"), written);
  EXPECT_EQ(test::ReadBytes(cache.folder() / "b.ipx"), written);
  model.parts[0].name = u"layer";
  EXPECT_EQ(Export(model, cache.folder() / "a.ipx", options), 1);
  EXPECT_NE(test::ReadBytes(cache.folder() / "a.ipx").find("layer"), written.npos);
}

}  // namespace
}  // namespace kerno
