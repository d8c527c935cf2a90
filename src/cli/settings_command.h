// kerno settings: the program's settings, seen and changed.
#pragma once

#include <string>

#include "cli/command.h"

namespace kerno {

class SettingsCommand final : public Command {
 public:
  const char* Name() const override { return "settings"; }
  const char* Description() const override { return "show and change settings"; }
  void AddOptions(CLI::App& app) override;
  ExitStatus Run() override;

 private:
  ExitStatus PrintPath();
  ExitStatus List();
  ExitStatus Get();
  ExitStatus Set();
  ExitStatus Unset();

  // Section and key as text; false after a message when they are not UTF-8.
  bool ReadNames(std::u16string* section, std::u16string* key) const;

  ExitStatus (SettingsCommand::*chosen_)() = nullptr;
  std::string section_;
  std::string key_;
  std::string value_;
};

}  // namespace kerno
