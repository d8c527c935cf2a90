#include "platform/held_file.h"

#include <gtest/gtest.h>

#include "support/temporary_folder.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

TEST(HeldFile, ReadersShareAndWritersDoNot) {
  const test::TemporaryFolder folder;
  test::WriteBytes(folder / "f", "content");
  Status status;
  const auto reader = HeldFile::Open(folder / "f", Deny::kWrite, &status);
  ASSERT_TRUE(reader);
  EXPECT_TRUE(HeldFile::Open(folder / "f", Deny::kWrite, &status));
  EXPECT_FALSE(HeldFile::Open(folder / "f", Deny::kAll, &status));
  EXPECT_EQ(status.failure, Failure::kSharingViolation);
  std::string bytes;
  EXPECT_TRUE(reader->Read(&bytes, 3).ok());
  EXPECT_EQ(bytes, "con");
  EXPECT_FALSE(HeldFile::Open(folder.path(), Deny::kWrite, &status));
  EXPECT_EQ(status.failure, Failure::kIsFolder);
  EXPECT_FALSE(HeldFile::Open(folder / std::string_view("f\0g", 3), Deny::kWrite, &status));
  EXPECT_EQ(status.failure, Failure::kNotFound);
}

TEST(HeldFile, NewFilesNeverReplaceOldOnes) {
  const test::TemporaryFolder folder;
  EXPECT_TRUE(CreateNewFile(folder / "f", "first").ok());
  EXPECT_EQ(CreateNewFile(folder / "f", "second").failure, Failure::kSharingViolation);
  EXPECT_EQ(test::ReadBytes(folder / "f"), "first");
  EXPECT_EQ(CreateNewFile(folder / "none/f", "x").failure, Failure::kNotFound);
}

TEST(HeldFile, ALinkKeepsPointing) {
  const test::TemporaryFolder folder;
  std::error_code error;
  fs::create_symlink(folder / "real", folder / "link", error);
  if (error) GTEST_SKIP() << "symbolic links: " << error.message();
  const auto become = [](const char* text) {
    return [text](std::string_view) { return std::optional<std::string>(text); };
  };
  EXPECT_EQ(ChangeFile(folder / "link", IfMissing::kFail, become("x")).failure, Failure::kNotFound);
  EXPECT_TRUE(ChangeFile(folder / "link", IfMissing::kCreate, become("1")).ok());
  EXPECT_EQ(test::ReadBytes(folder / "real"), "1");
  EXPECT_TRUE(ChangeFile(folder / "link", IfMissing::kCreate, become("2")).ok());
  EXPECT_EQ(test::ReadBytes(folder / "real"), "2");
  EXPECT_TRUE(fs::is_symlink(folder / "link"));
}

}  // namespace
}  // namespace kerno
