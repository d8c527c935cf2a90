// kerno cut: a text as files that a machine cuts as they are, or a series of them.
#pragma once

#include "cli/cut_options.h"
#include "cli/series_options.h"
#include "cli/sheet_options.h"
#include "cli/text_source.h"

namespace kerno {

class CutCommand final : public Command {
 public:
  const char* Name() const override { return "cut"; }
  const char* Description() const override {
    return "write a text as closed paths of true size, ready for a machine";
  }
  void AddOptions(CLI::App& app) override;
  ExitStatus Run() override;

 private:
  ExitStatus RunOnce();
  ExitStatus RunSeries();
  ExitStatus RunJob(SeriesJob job) const;

  TextSource source_;
  CutOptions options_;
  SeriesOptions series_;
  SheetOptionGroup sheets_;
  bool strict_ = false, quiet_ = false, json_ = false;
};

}  // namespace kerno
