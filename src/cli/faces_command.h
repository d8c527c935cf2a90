// kerno faces: the faces that can be set.
#pragma once

#include "cli/command.h"

namespace kerno {

class FacesCommand final : public Command {
 public:
  const char* Name() const override { return "faces"; }
  const char* Description() const override { return "list the installed faces"; }
  void AddOptions(CLI::App& app) override;
  ExitStatus Run() override;

 private:
  ExitStatus ListStrokeFonts() const;

  bool json_ = false;
  bool vertical_ = false;
  bool skipped_ = false;
  bool strokes_ = false;
};

}  // namespace kerno
