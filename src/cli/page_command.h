// kerno page: writes the web pages of the outputs in a folder.
#pragma once

#include <string>

#include "cli/command.h"

namespace kerno {

class PageCommand final : public Command {
 public:
  const char* Name() const override { return "page"; }
  const char* Description() const override {
    return "write the web page of the outputs in a folder";
  }
  void AddOptions(CLI::App& app) override;
  ExitStatus Run() override;

 private:
  std::string folder_;
};

}  // namespace kerno
