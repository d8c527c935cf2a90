#include "platform/file_replacement.h"

#include <gtest/gtest.h>

#include "support/temporary_folder.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;
using test::ReadBytes;
using test::TemporaryFolder;
using test::WriteBytes;
using Names = std::set<std::string>;

TEST(FileReplacement, TheTargetChangesAtTheEndOnly) {
  const TemporaryFolder folder;
  const fs::path target = folder / "drawing.dxf";
  for (const bool exists : {false, true}) {
    fs::remove(target);
    if (exists) WriteBytes(target, "old");
    for (const bool whole : {false, true}) {
      Status status;
      auto file = FileReplacement::Create(target, &status);
      ASSERT_TRUE(file && status.ok());
      ASSERT_TRUE(file->Write("new ").ok());
      ASSERT_TRUE(file->CanRewrite() && file->Rewrite(1, "or").ok());
      ASSERT_TRUE(file->Write(std::string(1 << 20, 'x')).ok());
      EXPECT_EQ(fs::exists(target), exists);
      EXPECT_EQ(ReadBytes(target), exists ? "old" : "");
      ASSERT_TRUE(!whole || file->Commit().ok());
      file.reset();
      EXPECT_EQ(folder.Names(), exists || whole ? Names{"drawing.dxf"} : Names{});
    }
    EXPECT_EQ(ReadBytes(target), "nor " + std::string(1 << 20, 'x'));
  }
}

TEST(FileReplacement, FailuresNameTheThingAndTheReason) {
  const TemporaryFolder folder;
  WriteBytes(folder / "file", "old");
  const struct {
    fs::path target;
    Failure failure;
    std::u16string why;
  } cases[] = {
      {"", Failure::kNotFound, u"the file has no name"},
      {fs::path(std::string("a\0b", 3)), Failure::kNotFound, u"the name holds a NUL"},
      {folder.path(), Failure::kIsFolder, u"it is a folder"},
      {folder / "new/", Failure::kIsFolder, u"this names a folder, not a file"},
      {folder / "missing/file", Failure::kNotFound, u"its folder does not exist"},
  };
  for (const auto& c : cases) {
    const Status status = ReplaceFile(c.target, "new");
    EXPECT_EQ(status.failure, c.failure) << c.target;
    EXPECT_EQ(status.why, c.why) << c.target;
    EXPECT_EQ(fs::path(status.what).native(), c.target.native());
  }
  for (const fs::path& target : {folder / "file/file", folder / std::string(300, 'n')}) {
    EXPECT_EQ(ReplaceFile(target, "new").failure, Failure::kNotFound) << target;
  }
  EXPECT_EQ(folder.Names(), Names{"file"});
  EXPECT_TRUE(ReplaceFile(folder / std::string(255, 'n'), "new").ok());
}

}  // namespace
}  // namespace kerno
