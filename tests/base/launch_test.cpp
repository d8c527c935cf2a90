#include "base/launch.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include "base/text.h"
#include "platform/registry.h"
#include "platform/shell.h"
#include "support/settings_fixture.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;
using test::ReadBytes;
using test::WriteBytes;

// A shell that answers what it is told to.
class FakeShell final : public Shell {
 public:
  FakeShell() : before_(ReplaceShell(this)) {}
  ~FakeShell() override { ReplaceShell(before_); }
  FakeShell(const FakeShell&) = delete;
  FakeShell& operator=(const FakeShell&) = delete;

  int result = 33;
  bool starts = false;
  int started = 0;
  std::vector<fs::path> programs;
  std::vector<fs::path> applications;

  int Execute(std::u16string_view, const fs::path&, const std::vector<std::u16string>&,
              const fs::path&) override {
    return result;
  }
  bool StartProcess(const fs::path&, const std::vector<std::u16string>&, const fs::path&) override {
    ++started;
    return starts;
  }
  std::vector<fs::path> ProgramFolders() override { return programs; }
  std::vector<fs::path> ApplicationFolders() override { return applications; }

 private:
  Shell* before_;
};

class LaunchTest : public test::SettingsFixture {
 protected:
  std::u16string DumpedText() const {
    std::u16string text;
    for (const auto& entry : fs::directory_iterator(folder_ / "tmp/DbgDump")) {
      text += DecodeText(ReadBytes(entry.path()));
    }
    return text;
  }

  // A program that writes its arguments, one a line, and ends with `status`.
  void Script(const std::string& name, int status, const std::string& more = "") {
    fs::create_directories(folder_ / "programs");
    const fs::path file = folder_ / ("programs/" + name);
    WriteBytes(file, "#!/bin/sh\nfor a in \"$@\"; do printf '%s\\n' \"$a\"; done > '" +
                         (folder_ / (name + ".out")).native() + "'\n" + more + "\nexit " +
                         std::to_string(status) + "\n");
    chmod(file.c_str(), 0755);
  }
  std::string Arguments(const std::string& name) const {
    return ReadBytes(folder_ / (name + ".out"));
  }

  void OnlyScripts() {
    setenv("PATH", ((folder_ / "programs").native() + ":/bin:/usr/bin").c_str(), 1);
    unsetenv("VISUAL");
    unsetenv("EDITOR");
  }
};

TEST_F(LaunchTest, TellsTheShellsWords) {
  FakeShell shell;
  LaunchRequest request;
  request.file = "/a/図.dxf";
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

TEST_F(LaunchTest, ArgumentsNeverMeetAShell) {
  OnlyScripts();
  Script("xdg-open", 0);
  const fs::path file = folder_ / "a; touch harm $(touch harm) -x 'q";
  WriteBytes(file, "x");
  LaunchRequest request;
  request.file = file;
  EXPECT_TRUE(Launch(&request));
  EXPECT_EQ(Arguments("xdg-open"), file.native() + "\n");
  fs::current_path(folder_.path());
  WriteBytes(folder_ / "--help", "x");
  request.file = "--help";
  EXPECT_TRUE(Launch(&request));
  EXPECT_EQ(Arguments("xdg-open"), (folder_ / "--help").native() + "\n");
  request.file = "https://localhost/x;y";
  EXPECT_TRUE(Launch(&request));
  EXPECT_EQ(Arguments("xdg-open"), "https://localhost/x;y\n");
  request.verb = u"explore";
  request.file = folder_.path();
  EXPECT_TRUE(Launch(&request));
  EXPECT_EQ(Arguments("xdg-open"), folder_.path().native() + "\n");
  EXPECT_FALSE(fs::exists("harm"));
  fs::current_path("/");
}

TEST_F(LaunchTest, ResultsOfTheDesktopsOpener) {
  OnlyScripts();
  WriteBytes(folder_ / "file", "x");
  Shell& shell = CurrentShell();
  const auto open = [&](const fs::path& file) { return shell.Execute(u"open", file, {}, {}); };
  const std::pair<int, int> kCases[] = {{0, 33}, {1, 1}, {2, 2}, {3, 31}, {4, 31}, {77, 31}};
  for (const auto& [status, result] : kCases) {
    Script("xdg-open", status);
    EXPECT_EQ(open(folder_ / "file"), result) << status;
  }
  EXPECT_EQ(open(folder_ / "missing"), 2);
  EXPECT_EQ(open(folder_ / "no/folder"), 3);
  EXPECT_EQ(open(folder_ / "file/below"), 3);
  Script("xdg-open", 0, "sleep 30");
  EXPECT_EQ(open(folder_ / "file"), 33);  // still running after two seconds
  fs::remove(folder_ / "programs/xdg-open");
  setenv("PATH", (folder_ / "programs").c_str(), 1);
  EXPECT_EQ(open(folder_ / "file"), 31);
  EXPECT_EQ(shell.Execute(u"unheard-of", folder_ / "file", {}, {}), 31);
  const pid_t id = fork();
  if (id == 0) {
    chmod((folder_ / "file").c_str(), 0);
    chmod(folder_.path().c_str(), 0755);
    const bool other = seteuid(65534) == 0;
    _exit(!other || open(folder_ / "file") == 5 ? 0 : 1);
  }
  int status = 0;
  waitpid(id, &status, 0);
  EXPECT_EQ(status, 0);
}

TEST_F(LaunchTest, EditingAndPrintingHaveTheirPrograms) {
  OnlyScripts();
  WriteBytes(folder_ / "file", "x");
  Script("xdg-open", 0);
  Script("lp", 0);
  Script("my editor", 0);
  Script("editor", 0);
  Shell& shell = CurrentShell();
  EXPECT_EQ(shell.Execute(u"print", folder_ / "file", {}, {}), 33);
  EXPECT_EQ(Arguments("lp"), "--\n" + (folder_ / "file").native() + "\n");
  setenv("EDITOR", "editor -n;w", 1);
  EXPECT_EQ(shell.Execute(u"edit", folder_ / "file", {}, {}), 33);
  EXPECT_EQ(Arguments("editor"), "-n;w\n" + (folder_ / "file").native() + "\n");
  EXPECT_FALSE(fs::exists(folder_ / "xdg-open.out"));
  setenv("VISUAL", "no-such-editor", 1);
  Script("editor", 1);
  EXPECT_EQ(shell.Execute(u"edit", folder_ / "file", {}, {}), 33);
  EXPECT_EQ(Arguments("xdg-open"), (folder_ / "file").native() + "\n");
  Script("lp", 1);
  EXPECT_EQ(shell.Execute(u"print", folder_ / "file", {}, {}), 31);
}

TEST_F(LaunchTest, StartsProgramsWhenTheShellRefuses) {
  OnlyScripts();
  Script("xdg-open", 3);
  Script("program", 0);
  LaunchRequest request;
  request.file = folder_ / "programs/program";
  request.parameters = {u"a b", u"$HOME", u"日"};
  EXPECT_TRUE(Launch(&request));
  EXPECT_EQ(request.result, 31);
  for (int i = 0; i < 100 && Arguments("program").empty(); ++i) usleep(20000);
  EXPECT_EQ(Arguments("program"), "a b\n$HOME\n日\n");

  // Neither a file without the right to run nor one without a program's form is handed to a shell.
  WriteBytes(folder_ / "plain", "touch '" + (folder_ / "harm").native() + "'\n");
  request.file = folder_ / "plain";
  EXPECT_FALSE(Launch(&request));
  chmod((folder_ / "plain").c_str(), 0755);
  EXPECT_FALSE(Launch(&request));
  EXPECT_FALSE(fs::exists(folder_ / "harm"));
  EXPECT_EQ(notices_.messages.size(), 2u);
  EXPECT_FALSE(CurrentShell().StartProcess("no-such-program-anywhere", {}, {}));
}

TEST_F(LaunchTest, FindsPrograms) {
  FakeShell shell;
  const fs::path root = folder_.path();
  fs::create_directories(root / "path/dir");
  fs::create_directories(root / "apps/thing/bin");
  for (const char* name : {"path/tool", "apps/thing/other", "apps/thing/bin/deep", "path/data"}) {
    WriteBytes(root / name, "x");
    chmod((root / name).c_str(), 0755);
  }
  chmod((root / "path/data").c_str(), 0644);
  shell.programs = {root / "none", root / "path"};
  shell.applications = {root / "apps"};
  EXPECT_EQ(FindProgram(u"tool"), root / "path/tool");
  EXPECT_EQ(FindProgram(u"other"), root / "apps/thing/other");
  EXPECT_EQ(FindProgram(u"deep"), root / "apps/thing/bin/deep");
  for (const std::u16string_view name : {u"data", u"dir", u"", u"../path/tool", u"absent"}) {
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
  put(u"tool", u"", text(root / "path/data"));
  EXPECT_EQ(FindProgram(u"tool"), root / "path/data");  // registered: taken as it is
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
