// The options that put signs on sheets of material.
#pragma once

#include "app/sheet_texts.h"
#include "cli/command.h"

namespace kerno {

class SheetOptionGroup {
 public:
  void AddTo(CLI::App& app);

  // Whether signs go on sheets.
  bool IsGiven() const;
  // False, with a report, where options need --sheet.
  bool AreUsable() const;

  // The values, with those that are given.
  SheetTexts Texts() const;

 private:
  CLI::App* app_ = nullptr;
  SheetTexts texts_;
};

}  // namespace kerno
