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
class Box final : public Notices {
 public:
  Box() : before_(ReplaceNotices(this)) {}
  ~Box() override { ReplaceNotices(before_); }
  Box(const Box&) = delete;
  Box& operator=(const Box&) = delete;

  void Message(std::u16string_view) override {}
  void ShowWait(std::u16string_view) override {}
  void ClearWait() override {}
  Continue Progress(std::u16string_view, int64_t, int64_t) override { return Continue::kYes; }
  void Ask(std::u16string_view text, std::function<void(int button)> answered) override {
    shown = text;
    press = std::move(answered);
  }

  std::u16string shown;
  std::function<void(int button)> press;

 private:
  Notices* before_;
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
  } kCases[] = {
      {0, u"The operating system is out of memory or resources.", 1, u"[OK]    \t"},
      {2, u"ファイルが見つかりませんでした", 5, u"[Innore]\t"},
      {31, u"指定されたファイル拡張子に関連付けされたプログラムがありません", 7, u"[No]    \t"},
      {4, u"Error(/a/図.dxf,-x y z)\n", 0, u"Bug...  \t"},
      {33, u"", 0, u""}};
  for (const auto& c : kCases) {
    shell.result = c.result;
    box.press = nullptr;
    EXPECT_EQ(Launch(&request), c.result > 32);
    EXPECT_EQ(request.result, c.result);
    ASSERT_EQ(box.press == nullptr, c.result > 32);
    if (!box.press) continue;
    const std::u16string message = c.text + u"\nFile=\"/a/図.dxf\"\nParamaters=\"-x y z\"";
    EXPECT_EQ(box.shown, message);
    const std::u16string record =
        u"\t---- OK              Button1  " + c.label + u"\r\n" + message + u"\r\n";
    EXPECT_EQ(DumpedText().find(record), std::u16string::npos) << "nobody has answered yet";
    box.press(c.button);
    EXPECT_NE(DumpedText().find(record), std::u16string::npos);
  }
  shell.result = 31;
  shell.starts = true;
  EXPECT_TRUE(Launch(&request));
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
  const auto expect = [](std::u16string_view name, const fs::path& wanted) {
    EXPECT_EQ(FindProgram(name), wanted) << Utf16ToUtf8(name);
  };
  expect(u"tool.exe", root / "path/tool.exe");
  expect(u"other.exe", root / "apps/thing/other.exe");
  expect(u"deep.exe", root / "apps/thing/bin/deep.exe");
  for (const auto* name : {u"data", u"dir", u"", u"../path/tool.exe", u"absent"}) expect(name, {});

  const auto put = [](const std::u16string& program, std::u16string_view name,
                      const RegistryValue& value) {
    Status why;
    const std::u16string key =
        u"Software\\Microsoft\\Windows\\CurrentVersion\\App Paths\\" + program;
    EXPECT_EQ(SetRegistry(RegistryRoot::kLocalMachine, key, name, value, &why),
              RegistryOutcome::kDone);
  };
  const auto text = [](const fs::path& path) {
    return RegistryValue{RegistryType::kString, PathText(path), 0};
  };
  put(u"tool.exe", u"", text(root / "path/data"));
  put(u"folder.exe", u"", text(root / "path"));
  put(u"data", u"", text("data"));
  put(u"data", u"path", text("\"" + (root / "path").string() + "\""));
  put(u"none", u"x", text("y"));
  put(u"number", u"", {RegistryType::kDword, {}, 1});
  expect(u"tool.exe", root / "path/data");  // registered: taken as it is
  expect(u"data", root / "path/data");
  for (const auto* name : {u"folder.exe", u"none", u"number"}) expect(name, {});
  for (const auto* error :
       {u"\tError RegQueryValueEx NULL\r\n", u"\tError RegQueryValueEx @\r\n"}) {
    EXPECT_NE(DumpedText().find(error), std::u16string::npos);
  }
}

}  // namespace
}  // namespace kerno
