// The whole command line: finds the command, reads its options, runs it.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "cli/command.h"

namespace kerno {

// In the order in which the help lists them.
std::vector<std::unique_ptr<Command>> AllCommands();

// Every command with its options, as the help, the manual and the completions tell of them.
class Program {
 public:
  Program();
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  CLI::App& app() { return *app_; }

  // Answers what stands on the command line; the first word is the program's name.
  ExitStatus Run(const std::vector<std::string>& arguments);

 private:
  CLI::App* FindCommand(const std::string& name) const;
  ExitStatus PrintHelp() const;
  ExitStatus RunChosen();

  struct Entry {
    std::unique_ptr<Command> command;
    CLI::App* app = nullptr;
  };
  std::unique_ptr<CLI::App> app_;
  std::vector<Entry> entries_;
  CLI::App* help_ = nullptr;
  std::string topic_;  // of the help
};

}  // namespace kerno
