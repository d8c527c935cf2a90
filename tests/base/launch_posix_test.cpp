// The desktop's opener, editors and programs are run without a shell between.
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/launch.h"
#include "platform/shell.h"
#include "support/child_process.h"
#include "support/environment.h"
#include "support/settings_fixture.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;
using test::ReadBytes;
using test::SetVariable;
using test::WriteBytes;

class LaunchPosixTest : public test::SettingsFixture {
 protected:
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
    SetVariable("PATH", ((folder_ / "programs").native() + ":/bin:/usr/bin").c_str());
    unsetenv("VISUAL");
    unsetenv("EDITOR");
  }
};

TEST_F(LaunchPosixTest, ArgumentsNeverMeetAShell) {
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

TEST_F(LaunchPosixTest, ResultsOfTheDesktopsOpener) {
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
  SetVariable("PATH", (folder_ / "programs").c_str());
  EXPECT_EQ(open(folder_ / "file"), 31);
  EXPECT_EQ(shell.Execute(u"unheard-of", folder_ / "file", {}, {}), 31);
  EXPECT_EQ(test::InChild([&] {
              chmod((folder_ / "file").c_str(), 0);
              chmod(folder_.path().c_str(), 0755);
              const bool other = seteuid(65534) == 0;
              return !other || open(folder_ / "file") == 5 ? 0 : 1;
            }),
            0);
}

TEST_F(LaunchPosixTest, EditingAndPrintingHaveTheirPrograms) {
  OnlyScripts();
  WriteBytes(folder_ / "file", "x");
  Script("xdg-open", 0);
  Script("lp", 0);
  Script("my editor", 0);
  Script("editor", 0);
  Shell& shell = CurrentShell();
  EXPECT_EQ(shell.Execute(u"print", folder_ / "file", {}, {}), 33);
  EXPECT_EQ(Arguments("lp"), "--\n" + (folder_ / "file").native() + "\n");
  SetVariable("EDITOR", "editor -n;w");
  EXPECT_EQ(shell.Execute(u"edit", folder_ / "file", {}, {}), 33);
  EXPECT_EQ(Arguments("editor"), "-n;w\n" + (folder_ / "file").native() + "\n");
  EXPECT_FALSE(fs::exists(folder_ / "xdg-open.out"));
  SetVariable("VISUAL", "no-such-editor");
  Script("editor", 1);
  EXPECT_EQ(shell.Execute(u"edit", folder_ / "file", {}, {}), 33);
  EXPECT_EQ(Arguments("xdg-open"), (folder_ / "file").native() + "\n");
  Script("lp", 1);
  EXPECT_EQ(shell.Execute(u"print", folder_ / "file", {}, {}), 31);
}

TEST_F(LaunchPosixTest, StartsProgramsWhenTheShellRefuses) {
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

}  // namespace
}  // namespace kerno
