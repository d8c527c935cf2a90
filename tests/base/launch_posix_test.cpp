// The desktop's opener, editors and programs are run without a shell between.
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/launch.h"
#include "platform/shell.h"
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
  LaunchPosixTest() {
    SetVariable("PATH", ((folder_ / "programs").native() + ":/bin:/usr/bin").c_str());
    unsetenv("VISUAL");
    unsetenv("EDITOR");
    WriteBytes(folder_ / "file", "x");
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

  static int Execute(const std::u16string& verb, const fs::path& file,
                     const std::vector<std::u16string>& parameters = {}) {
    return CurrentShell().Execute({verb, file, parameters, {}});
  }
};

TEST_F(LaunchPosixTest, ArgumentsNeverMeetAShell) {
  Script("xdg-open", 0);
  fs::current_path(folder_.path());
  const fs::path odd = folder_ / "a; touch harm $(touch harm) -x 'q";
  WriteBytes(odd, "x");
  WriteBytes(folder_ / "--help", "x");
  const struct {
    fs::path asked;
    std::string opened;
  } kCases[] = {{odd, odd.native()},
                {"--help", (folder_ / "--help").native()},
                {"https://localhost/x;y", "https://localhost/x;y"},
                {folder_.path(), folder_.path().native()}};
  for (const auto& c : kCases) {
    LaunchRequest request;
    request.file = c.asked;
    EXPECT_TRUE(Launch(&request));
    EXPECT_EQ(Arguments("xdg-open"), c.opened + "\n");
  }
  EXPECT_FALSE(fs::exists("harm"));
  fs::current_path("/");
}

TEST_F(LaunchPosixTest, ResultsOfTheDesktopsOpener) {
  const std::pair<int, int> kStatuses[] = {{0, 33}, {1, 1}, {2, 2}, {3, 31}, {4, 31}, {77, 31}};
  for (const auto& [status, result] : kStatuses) {
    Script("xdg-open", status);
    EXPECT_EQ(Execute(u"open", folder_ / "file"), result) << status;
  }
  Script("xdg-open", 0, "sleep 30");
  EXPECT_EQ(Execute(u"explore", folder_ / "file"), 33);  // still running after two seconds
  EXPECT_EQ(Execute(u"open", folder_ / "missing"), 2);
  EXPECT_EQ(Execute(u"open", folder_ / "no/folder"), 3);
}

TEST_F(LaunchPosixTest, EditingAndPrintingHaveTheirPrograms) {
  const std::string file = (folder_ / "file").native() + "\n";
  for (const char* name : {"xdg-open", "lp", "editor"}) Script(name, 0);
  SetVariable("EDITOR", "editor -n;w");
  EXPECT_EQ(Execute(u"print", folder_ / "file", {u"-n", u"2 x"}), 33);
  EXPECT_EQ(Arguments("lp"), "-n\n2 x\n--\n" + file);
  EXPECT_EQ(Execute(u"edit", folder_ / "file", {u"+7"}), 33);
  EXPECT_EQ(Arguments("editor"), "-n;w\n+7\n" + file);
  Script("editor", 1);
  EXPECT_EQ(Execute(u"edit", folder_ / "file"), 33);
  EXPECT_EQ(Arguments("xdg-open"), file);
}

TEST_F(LaunchPosixTest, StartsProgramsWhenTheShellRefuses) {
  Script("xdg-open", 0);  // takes no parameters, so that the program gets them
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
}

}  // namespace
}  // namespace kerno
