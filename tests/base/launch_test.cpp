#include "base/launch.h"

#include "base/text.h"
#include "platform/registry.h"
#include "support/fake_shell.h"
#include "support/settings_fixture.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;
using test::WriteBytes;

class LaunchTest : public test::SettingsFixture {};

TEST_F(LaunchTest, TellsTheShellsWords) {
  test::FakeShell shell;
  LaunchRequest request;
  request.file = u"/a/図.dxf";
  request.parameters = {u"-x", u"y z"};
  const std::pair<int, std::u16string> kCases[] = {
      {0, u"The operating system is out of memory or resources."},
      {2, u"ファイルが見つかりませんでした"},
      {31, u"指定されたファイル拡張子に関連付けされたプログラムがありません"},
      {4, u"Error(/a/図.dxf,-x y z)\n"}};
  for (const auto& [result, text] : kCases) {
    shell.result = result;
    EXPECT_FALSE(Launch(&request));
    EXPECT_EQ(request.result, result);
    const std::u16string message = text + u"\nFile=\"/a/図.dxf\"\nParamaters=\"-x y z\"";
    EXPECT_EQ(notices_.messages.back(), message);
    EXPECT_NE(
        DumpedText().find(u"\t---- OK              Button1  [OK]    \t\r\n" + message + u"\r\n"),
        std::u16string::npos);
  }
  EXPECT_EQ(shell.started, 4);
  shell.starts = true;
  EXPECT_TRUE(Launch(&request));
  shell.result = 33;
  EXPECT_TRUE(Launch(&request));
  EXPECT_EQ(shell.started, 5);
  EXPECT_EQ(notices_.messages.size(), 4u);
  EXPECT_EQ(ButtonLabel(5), u"[Innore]\t");
  EXPECT_EQ(ButtonLabel(0), u"Bug...  \t");
  EXPECT_EQ(ButtonLabel(8), u"Bug...  \t");
}

TEST_F(LaunchTest, FindsPrograms) {
  test::FakeShell shell;
  const fs::path root = folder_.path();
  fs::create_directories(root / "path/dir");
  fs::create_directories(root / "apps/thing/bin");
  for (const char* name :
       {"path/tool.exe", "apps/thing/other.exe", "apps/thing/bin/deep.exe", "path/data"}) {
    WriteBytes(root / name, "x");
    fs::permissions(root / name, fs::perms::all);
  }
  fs::permissions(root / "path/data", fs::perms::owner_read);
  shell.programs = {root / "none", root / "path"};
  shell.applications = {root / "apps"};
  EXPECT_EQ(FindProgram(u"tool.exe"), root / "path/tool.exe");
  EXPECT_EQ(FindProgram(u"other.exe"), root / "apps/thing/other.exe");
  EXPECT_EQ(FindProgram(u"deep.exe"), root / "apps/thing/bin/deep.exe");
  for (const std::u16string_view name : {u"data", u"dir", u"", u"../path/tool.exe", u"absent"}) {
    EXPECT_EQ(FindProgram(name), fs::path());
  }
  const std::u16string key = u"Software\\Microsoft\\Windows\\CurrentVersion\\App Paths\\";
  Status why;
  const auto put = [&](std::u16string_view program, std::u16string_view name,
                       const RegistryValue& value) {
    EXPECT_EQ(
        SetRegistry(RegistryRoot::kLocalMachine, key + std::u16string(program), name, value, &why),
        RegistryOutcome::kDone);
  };
  const auto text = [](const fs::path& path) {
    return RegistryValue{RegistryType::kString, PathText(path), 0};
  };
  put(u"tool.exe", u"", text(root / "path/data"));
  EXPECT_EQ(FindProgram(u"tool.exe"), root / "path/data");  // registered: taken as it is
  put(u"folder.exe", u"", text(root / "path"));
  EXPECT_EQ(FindProgram(u"folder.exe"), fs::path());
  put(u"data", u"", text("data"));
  put(u"data", u"path", text(root / "path"));
  EXPECT_EQ(FindProgram(u"data"), root / "path/data");
  put(u"none", u"x", text("y"));
  put(u"number", u"", {RegistryType::kDword, {}, 1});
  EXPECT_EQ(FindProgram(u"none"), fs::path());
  EXPECT_EQ(FindProgram(u"number"), fs::path());
  EXPECT_NE(DumpedText().find(u"\tError RegQueryValueEx NULL\r\n"), std::u16string::npos);
  EXPECT_NE(DumpedText().find(u"\tError RegQueryValueEx @\r\n"), std::u16string::npos);
}

}  // namespace
}  // namespace kerno
