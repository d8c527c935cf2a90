#include "app/system_services.h"

#include <gtest/gtest.h>

#include "support/fake_shell.h"
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

}  // namespace
}  // namespace kerno
