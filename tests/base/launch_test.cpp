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

// A message box that stands until the test presses a button.
class Box final : public test::RecordingNotices {
 public:
  void Ask(std::u16string_view text, const std::function<void(int button)>& answered) override {
    Message(text);
    press = answered;
  }
  std::function<void(int button)> press;
};

TEST_F(LaunchTest, TellsTheShellsWordsAndRecordsTheAnswer) {
  test::FakeShell shell;
  Box box;
  LaunchRequest request;
  request.file = u"/a/図.dxf";
  request.parameters = {u"-x", u"y z"};
  fs::create_directories(folder_ / "tmp/DbgDump");
  const struct {
    int result;
    std::u16string text;
    int button;
    std::u16string label;
  } kCases[] = {{2, u"ファイルが見つかりませんでした", 1, u"[OK]    \t"},
                {4, u"Error(/a/図.dxf,-x y z)\n", 0, u"Bug...  \t"}};
  for (const auto& c : kCases) {
    shell.result = c.result;
    EXPECT_FALSE(Launch(&request));
    EXPECT_EQ(request.result, c.result);
    const std::u16string message = c.text + u"\nFile=\"/a/図.dxf\"\nParamaters=\"-x y z\"";
    EXPECT_EQ(box.messages.back(), message);
    const std::u16string record =
        u"\t---- OK              Button1  " + c.label + u"\r\n" + message + u"\r\n";
    EXPECT_EQ(DumpedText().find(record), std::u16string::npos) << "nobody has answered yet";
    box.press(c.button);
    EXPECT_NE(DumpedText().find(record), std::u16string::npos);
  }
  shell.starts = true;
  EXPECT_TRUE(Launch(&request));
  shell.result = 33;
  EXPECT_TRUE(Launch(&request));
  EXPECT_EQ(shell.started, 3);
}

TEST_F(LaunchTest, FindsPrograms) {
  test::FakeShell shell;
  const fs::path root = folder_.path();
  fs::create_directories(root / "path/dir");
  fs::create_directories(root / "apps/thing/bin");
  for (const char* name : {"path/a.exe", "apps/thing/bin/c.exe", "path/data"}) {
    WriteBytes(root / name, "x");
    fs::permissions(root / name, fs::perms::all);
  }
  fs::permissions(root / "path/data", fs::perms::owner_read);
  shell.programs = {root / "none", root / "path"};
  shell.applications = {root / "apps"};
  const auto expect = [&](std::vector<std::pair<std::u16string, fs::path>> cases) {
    for (const auto& [name, wanted] : cases) {
      EXPECT_EQ(FindProgram(name), wanted.empty() ? wanted : root / wanted) << Utf16ToUtf8(name);
    }
  };
  expect({{u"a.exe", "path/a.exe"}, {u"c.exe", "apps/thing/bin/c.exe"}});
  expect({{u"data", ""}, {u"dir", ""}, {u"", ""}, {u"../path/a.exe", ""}});

  const auto put = [](std::u16string program, std::u16string_view name, const fs::path& value) {
    Status why;
    program.insert(0, u"Software\\Microsoft\\Windows\\CurrentVersion\\App Paths\\");
    (void)SetRegistry(RegistryRoot::kLocalMachine, program, name,
                      {RegistryType::kString, PathText(value), 0}, &why);
    EXPECT_TRUE(why.ok());
  };
  put(u"a.exe", u"", root / "path/data");
  put(u"data", u"", "data");
  put(u"data", u"path", "\"" + (root / "path").string() + "\"");
  expect({{u"a.exe", "path/data"}, {u"data", "path/data"}});  // registered: taken as it is
}

}  // namespace
}  // namespace kerno
