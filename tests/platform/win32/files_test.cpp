// Paths, folders, files and profiles against what the system's own calls say of them.
#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "platform/file_replacement.h"
#include "platform/folder_path.h"
#include "platform/held_file.h"
#include "platform/private_profile.h"
#include "platform/win32/handle.h"
#include "platform/win32/windows_api.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

Handle OpenForReading(const fs::path& file, DWORD share) {
  return Handle(CreateFileW(file.c_str(), GENERIC_READ, share, nullptr, OPEN_EXISTING, 0, nullptr));
}

std::string ReadThroughSystem(const fs::path& file) {
  const Handle handle = OpenForReading(file, FILE_SHARE_READ);
  std::array<char, 256> buffer{};
  DWORD got = 0;
  EXPECT_TRUE(ReadFile(handle.get(), buffer.data(), buffer.size(), &got, nullptr)) << file;
  return {buffer.data(), got};
}

TEST(FolderPath, FoldersAndFilesFarBeyondTheUsualLength) {
  const test::TemporaryFolder root;
  fs::path folder = root.path();
  for (const wchar_t unit : {L'a', L'\u6C38', L'c', L'd'}) folder /= std::wstring(90, unit);
  for (const fs::path& level : FolderLevels(folder)) EXPECT_TRUE(MakeFolder(level).ok()) << level;
  EXPECT_TRUE(IsFolder(folder));
  const fs::path file = folder / L"\u6C38\U0001F600.dxf";
  ASSERT_GT(file.native().size(), 370u);
  EXPECT_TRUE(ReplaceFile(file, "old").ok());
  EXPECT_TRUE(ReplaceFile(file, "new").ok());
  EXPECT_TRUE(AppendToFile(file, "start", "er").ok());
  const fs::path by_prefix = L"\\\\?\\" + file.native();
  EXPECT_EQ(ReadThroughSystem(by_prefix), "newer");
  EXPECT_TRUE(CreateNewFile(folder / L"n", "x").ok());
  EXPECT_EQ(CreateNewFile(folder / L"n", "x").failure, Failure::kSharingViolation);
  EXPECT_TRUE(WriteProfile(folder / L"p.ini", {{u"s", u"k", u"\u6C38"}}).ok());
  EXPECT_EQ(ReadProfileString(folder / L"p.ini", u"s", u"k", 10), u"\u6C38");
  EXPECT_EQ(FactsOfPath(folder).kind, PathKind::kFolder);
  EXPECT_EQ(FactsOfPath(file).kind, PathKind::kFile);
  EXPECT_EQ(FactsOfPath(file).size, 5u);
  std::set<fs::path> listed;
  EXPECT_TRUE(ListFolder(folder, [&](const fs::path& path) { listed.insert(path); }).ok());
  EXPECT_EQ(listed, (std::set<fs::path>{file, folder / L"n", folder / L"p.ini"}));
  EXPECT_FALSE(ListFolder(file, [](const fs::path&) {}).ok());
  EXPECT_TRUE(std::ifstream(PathToOpen(file)).is_open());
  for (const fs::path& path : listed) {
    EXPECT_TRUE(RemoveFile(path).ok()) << path;
    EXPECT_EQ(FactsOfPath(path).kind, PathKind::kMissing) << path;
  }
  EXPECT_TRUE(RemoveDirectoryW((L"\\\\?\\" + folder.native()).c_str()));
}

TEST(HeldFile, TheSystemKeepsOthersOut) {
  const test::TemporaryFolder folder;
  const fs::path file = folder.path() / L"held";
  test::WriteBytes(file, "x");
  Status status;
  {
    const auto held = HeldFile::Open(file, Deny::kWrite, &status);
    EXPECT_TRUE(OpenForReading(file, FILE_SHARE_READ).valid());
    EXPECT_FALSE(Handle(CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                    OPEN_EXISTING, 0, nullptr))
                     .valid());
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
  }
  {
    const auto held = HeldFile::Open(file, Deny::kAll, &status);
    EXPECT_FALSE(OpenForReading(file, FILE_SHARE_READ | FILE_SHARE_WRITE).valid());
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
  }
  const Handle other = OpenForReading(file, 0);
  EXPECT_EQ(HeldFile::Open(file, Deny::kWrite, &status), nullptr);
  EXPECT_EQ(status.failure, Failure::kSharingViolation);
  EXPECT_EQ(ReplaceFile(file, "y").failure, Failure::kSharingViolation);
  EXPECT_EQ(AppendToFile(file, "", "y").failure, Failure::kSharingViolation);
  EXPECT_EQ(folder.Names(), std::set<std::string>{"held"});
}

TEST(PrivateProfile, TheSystemReadsWhatWasWrittenAndTheOtherWayRound) {
  const test::TemporaryFolder folder;
  const fs::path file = folder.path() / L"\u6C38.ini";
  const auto system_reads = [&](const wchar_t* section, const wchar_t* key) {
    std::array<wchar_t, 100> buffer{};
    GetPrivateProfileStringW(section, key, L"<none>", buffer.data(), buffer.size(), file.c_str());
    return std::wstring(buffer.data());
  };
  const std::vector<ProfileEdit> edits = {{u"\u8A2D\u5B9A", u"Face", u"\u6C38 A"},
                                          {u"Other", u"n", u"1"},
                                          {u"Other", u"long", std::u16string(20'000, u'\u6C38')}};
  EXPECT_TRUE(WriteProfile(file, edits).ok());
  EXPECT_EQ(system_reads(L"\u8A2D\u5B9A", L"face"), L"\u6C38 A");
  EXPECT_EQ(system_reads(L"OTHER", L"n"), L"1");
  EXPECT_EQ(ReadProfileString(file, u"Other", u"long", 10'000)->size(), 10'000u);
  EXPECT_EQ(ReadProfileString(file, u"Other", u"long", std::u16string::npos)->size(), 20'000u);
  ASSERT_TRUE(WritePrivateProfileStringW(L"Other", L"n", L"\"quoted\"", file.c_str()));
  EXPECT_EQ(ReadProfileString(file, u"other", u"N", 100), u"quoted");
  EXPECT_TRUE(WriteProfile(file, {{u"Other", u"n", std::nullopt}}).ok());
  EXPECT_EQ(system_reads(L"Other", L"n"), L"<none>");
  EXPECT_EQ(folder.Names().size(), 1u);

  // Held by somebody: none of the lines is written.
  const std::string before = test::ReadBytes(file);
  {
    const Handle other = OpenForReading(file, FILE_SHARE_READ);
    EXPECT_EQ(WriteProfile(file, {{u"Other", u"a", u"1"}, {u"Other", u"b", u"2"}}).failure,
              Failure::kSharingViolation);
  }
  EXPECT_EQ(test::ReadBytes(file), before);
}

}  // namespace
}  // namespace kerno
