#include "app/system_services.h"

#include <gtest/gtest.h>

#include "platform/shell.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

// A shell that keeps what it was asked to open.
class RecordingShell final : public Shell {
 public:
  RecordingShell() : before_(ReplaceShell(this)) {}
  ~RecordingShell() override { ReplaceShell(before_); }
  RecordingShell(const RecordingShell&) = delete;
  RecordingShell& operator=(const RecordingShell&) = delete;

  fs::path opened;

  int Execute(std::u16string_view, const fs::path& file, const std::vector<std::u16string>&,
              const fs::path&) override {
    opened = file;
    return 33;
  }
  bool StartProcess(const fs::path&, const std::vector<std::u16string>&, const fs::path&) override {
    return false;
  }
  std::vector<fs::path> ProgramFolders() override { return {}; }
  std::vector<fs::path> ApplicationFolders() override { return {}; }

 private:
  Shell* before_;
};

// The bare name would start a program of that name beside the folder.
TEST(SystemServices, AFolderIsOpenedAsAFolder) {
  RecordingShell shell;
  const test::TemporaryFolder folder;
  SystemServices services;
  for (const fs::path& name : {folder / "out", folder / "out" / ""}) {
    EXPECT_TRUE(services.OpenFolder(name));
    EXPECT_EQ(shell.opened.native(), (folder / "out" / "").native()) << name;
  }
}

}  // namespace
}  // namespace kerno
