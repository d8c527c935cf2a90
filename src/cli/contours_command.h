// kerno contours: the contours of a text as JSON or as a listing.
#pragma once

#include "cli/text_options.h"

namespace kerno {

class ContoursCommand final : public Command {
 public:
  const char* Name() const override { return "contours"; }
  const char* Description() const override { return "print the contours of a text"; }
  void AddOptions(CLI::App& app) override;
  ExitStatus Run() override;

 private:
  TextOptions text_;
  bool json_ = false;
  bool unplaced_ = false;
};

}  // namespace kerno
