// kerno measure: the extent of a text set in one line.
#pragma once

#include "cli/text_options.h"

namespace kerno {

class MeasureCommand final : public Command {
 public:
  const char* Name() const override { return "measure"; }
  const char* Description() const override { return "print the length and height of a text"; }
  void AddOptions(CLI::App& app) override;
  ExitStatus Run() override;

 private:
  TextOptions text_;
  bool json_ = false;
  bool ink_ = false;
};

}  // namespace kerno
