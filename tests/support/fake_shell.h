// A shell that answers what it is told to.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "platform/shell.h"
#include "support/installed.h"

namespace kerno::test {

class FakeShell final : public Installed<Shell, ReplaceShell> {
 public:
  int result = 33;
  bool starts = false;
  int started = 0;
  std::filesystem::path opened;  // the last that it was asked to open
  std::vector<std::filesystem::path> programs;
  std::vector<std::filesystem::path> applications;

  int Execute(const ShellRequest& request) override {
    opened = request.file;
    return result;
  }
  bool StartProcess(const ShellRequest&) override {
    ++started;
    return starts;
  }
  std::vector<std::filesystem::path> ProgramFolders() override { return programs; }
  std::vector<std::filesystem::path> ApplicationFolders() override { return applications; }
};

}  // namespace kerno::test
