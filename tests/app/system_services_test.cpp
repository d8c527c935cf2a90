#include "app/system_services.h"

#include <gtest/gtest.h>

#include "app/own_scratch.h"
#include "support/fake_shell.h"
#include "support/fake_system.h"
#include "support/file_holder.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

// The bare name would start a program of that name beside the folder.
TEST(SystemServices, AFolderIsOpenedAsAFolder) {
  test::FakeShell shell;
  const test::TemporaryFolder folder;
  SystemServices services;
  for (const fs::path& name : {folder / "out", folder / "out" / ""}) {
    EXPECT_TRUE(services.OpenFolder(name));
    EXPECT_EQ(shell.opened.native(), (folder / "out" / "").native()) << name;
  }
}

// A run that was killed leaves what it has made, and nobody holds its mark any more.
TEST(OwnScratch, IsOneRunsAloneAndLeavesNothing) {
  const test::TemporaryFolder folder;
  test::FakeSystem system;
  system.temporary = folder.path();
  system.environment = {{u"TMPDIR", folder.path().u16string()}};
  const fs::path all = folder / "Kerno.drag";
  fs::create_directories(all / "7" / "deep");
  fs::create_directories(all / "8");
  for (const char* name : {"7.held", "7/deep/killed.dxf", "8.held", "8/live.dxf", "old.dxf"}) {
    test::WriteBytes(all / name, "x");
  }
  const test::FileHolder other(all / "8.held", test::HoldKind::kWholeFile);
  fs::path one_has, two_has;
  {
    OwnScratch one;
    {
      OwnScratch two;
      one_has = one.Folder();
      two_has = two.Folder();
      ASSERT_FALSE(one_has.empty());
      EXPECT_NE(one_has, two_has);
      EXPECT_FALSE(fs::exists(all / "7")) << "left by a killed run";
      EXPECT_FALSE(fs::exists(all / "old.dxf"));
      test::WriteBytes(two_has / "plate.dxf", "x");
      test::WriteBytes(one_has / "plate.dxf", "x");
      fs::remove_all(two_has);  // as cleaners of temporary folders do
      EXPECT_TRUE(fs::is_directory(two.Folder()));
    }
    EXPECT_FALSE(fs::exists(two_has));
    EXPECT_TRUE(fs::exists(one_has / "plate.dxf"));
  }
  EXPECT_TRUE(fs::exists(all / "8" / "live.dxf"));
  fs::remove(all / "8" / "live.dxf");
  fs::remove(all / "8");
  for (const auto& entry : fs::directory_iterator(all)) {
    EXPECT_EQ(entry.path().filename(), "8.held") << "left over";
  }
}

}  // namespace
}  // namespace kerno
