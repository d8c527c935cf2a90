// Registry, launching and private folders against the system's own answers.
#include <aclapi.h>
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "platform/registry.h"
#include "platform/shell.h"
#include "platform/system.h"
#include "platform/win32/windows_api.h"
#include "support/private_registry.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

constexpr const char16_t* kKey = u"Software\\\u8A2D\u5B9A\\Kerno";
constexpr const wchar_t* kWideKey = L"Software\\\u8A2D\u5B9A\\Kerno";

TEST(Registry, TheSystemReadsWhatWasWrittenAndTheOtherWayRound) {
  const test::PrivateRegistry registry;
  Status why;
  RegistryValue text;
  text.type = RegistryType::kString;
  text.text = u"\u6C38\u9060";
  EXPECT_EQ(SetRegistry(RegistryRoot::kCurrentUser, kKey, u"text", text, &why),
            RegistryOutcome::kDone);
  RegistryValue number;
  number.type = RegistryType::kDword;
  number.number = 0xFF00FF00;
  EXPECT_EQ(SetRegistry(RegistryRoot::kCurrentUser, kKey, u"", number, &why),
            RegistryOutcome::kDone);

  HKEY key = nullptr;
  ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, kWideKey, 0, KEY_ALL_ACCESS, &key), ERROR_SUCCESS);
  std::array<wchar_t, 10> buffer{};
  DWORD type = 0, size = sizeof buffer;
  EXPECT_EQ(
      RegQueryValueExW(key, L"TEXT", nullptr, &type, reinterpret_cast<BYTE*>(buffer.data()), &size),
      ERROR_SUCCESS);
  EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
  EXPECT_EQ(size, 3 * sizeof(wchar_t));
  EXPECT_EQ(std::wstring(buffer.data()), L"\u6C38\u9060");
  DWORD value = 0;
  size = sizeof value;
  RegQueryValueExW(key, nullptr, nullptr, &type, reinterpret_cast<BYTE*>(&value), &size);
  EXPECT_EQ(type, static_cast<DWORD>(REG_DWORD));
  EXPECT_EQ(value, 0xFF00FF00u);

  const struct {
    const wchar_t* name;
    DWORD type;
    std::wstring data;
    size_t bytes;
    RegistryType read;
    std::u16string text;
  } rows[] = {
      {L"no NUL", REG_SZ, L"ab", 4, RegistryType::kString, u"ab"},
      {L"empty", REG_SZ, L"", 0, RegistryType::kString, u""},
      {L"remains", REG_SZ, std::wstring(L"ab\0cd\0", 6), 12, RegistryType::kString, u"ab"},
      {L"odd", REG_SZ, L"ab", 3, RegistryType::kString, u"a"},
      {L"variable", REG_EXPAND_SZ, L"%KERNO_TEST%\\x", 28, RegistryType::kExpandableString,
       u"C:\\here\\x"},
      {L"bytes", REG_BINARY, L"ab", 4, RegistryType::kOther, u""},
      {L"short", REG_DWORD, L"a", 2, RegistryType::kOther, u""},
  };
  SetEnvironmentVariableW(L"KERNO_TEST", L"C:\\here");
  for (const auto& row : rows) {
    RegSetValueExW(key, row.name, 0, row.type, reinterpret_cast<const BYTE*>(row.data.c_str()),
                   static_cast<DWORD>(row.bytes));
    RegistryValue read;
    const std::u16string name(row.name, row.name + wcslen(row.name));
    EXPECT_EQ(QueryRegistry(RegistryRoot::kCurrentUser, kKey, name, &read), RegistryOutcome::kDone);
    EXPECT_EQ(read.type, row.read) << row.name;
    EXPECT_EQ(read.text, row.text) << row.name;
  }
  RegCloseKey(key);
}

TEST(System, APrivateFolderIsForTheUserAndTheSystemAlone) {
  const test::TemporaryFolder root;
  for (const wchar_t* name : {L"new", L"present"}) {
    const fs::path folder = root.path() / name;
    if (std::wstring_view(name) == L"present") CreateDirectoryW(folder.c_str(), nullptr);
    const Status made = CurrentSystem().MakePrivateFolder(folder);
    ASSERT_TRUE(made.ok()) << name;
    PACL list = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    ASSERT_EQ(GetNamedSecurityInfoW(folder.c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION,
                                    nullptr, nullptr, &list, nullptr, &descriptor),
              static_cast<DWORD>(ERROR_SUCCESS));
    std::array<BYTE, SECURITY_MAX_SID_SIZE> everyone{};
    DWORD size = everyone.size();
    CreateWellKnownSid(WinWorldSid, nullptr, everyone.data(), &size);
    for (DWORD i = 0; list && i < list->AceCount; ++i) {
      void* ace = nullptr;
      GetAce(list, i, &ace);
      auto* const allowed = static_cast<ACCESS_ALLOWED_ACE*>(ace);
      const bool rights = allowed->Header.AceType == ACCESS_ALLOWED_ACE_TYPE && allowed->Mask != 0;
      EXPECT_FALSE(rights && EqualSid(&allowed->SidStart, everyone.data())) << name;
    }
    LocalFree(descriptor);
  }
  test::WriteBytes(root / "file", "x");
  EXPECT_EQ(CurrentSystem().MakePrivateFolder(root / "file").failure, Failure::kAccessDenied);
  EXPECT_EQ(CurrentSystem().MakePrivateFolder(root / "no/folder").failure, Failure::kNotFound);
}

// What a program of this file is started as by the test below: it writes its arguments down.
TEST(ShellChild, DISABLED_WritesItsArguments) {
  const auto file = CurrentSystem().Environment(u"KERNO_ARGUMENTS");
  if (!file) GTEST_SKIP() << "started by another test only";
  int count = 0;
  LPWSTR* const arguments = CommandLineToArgvW(GetCommandLineW(), &count);
  std::wstring text;
  for (int i = 3; i < count; ++i) text.append(arguments[i]).append(L"\n");
  LocalFree(arguments);
  const auto* const bytes = reinterpret_cast<const char*>(text.data());
  test::WriteBytes(fs::path(*file), {bytes, text.size() * sizeof(wchar_t)});
}

TEST(Shell, ArgumentsArriveAsTheyWere) {
  const test::TemporaryFolder folder;
  const fs::path file = folder / "arguments";
  const std::vector<std::u16string> arguments = {
      u"",      u"plain", u"a b", u"a\"b\"", u"end\\", u"sp ace\\", u"\\\"", u"\u6C38\U0001F600",
      u"%PATH%"};
  std::vector<std::u16string> all = {u"--gtest_also_run_disabled_tests",
                                     u"--gtest_filter=ShellChild.*"};
  std::wstring wanted;
  for (const std::u16string& argument : arguments) {
    all.push_back(argument);
    wanted.append(argument.begin(), argument.end()).append(L"\n");
  }
  SetEnvironmentVariableW(L"KERNO_ARGUMENTS", file.c_str());
  ASSERT_TRUE(
      CurrentShell().StartProcess({u"open", CurrentSystem().ProgramPath(), all, folder.path()}));
  std::string bytes;
  const size_t size = wanted.size() * sizeof(wchar_t);
  for (int i = 0; i < 1000 && bytes.size() < size; ++i) {
    Sleep(10);
    bytes = test::ReadBytes(file);
  }
  SetEnvironmentVariableW(L"KERNO_ARGUMENTS", nullptr);
  Sleep(100);  // the child's end, so that its files can be removed
  EXPECT_EQ(std::wstring(reinterpret_cast<const wchar_t*>(bytes.data()), bytes.size() / 2), wanted);
}

}  // namespace
}  // namespace kerno
