// The options that put signs on sheets of material.
#pragma once

#include <optional>
#include <string>

#include "app/sheets.h"
#include "cli/command.h"

namespace kerno {

class SheetOptionGroup {
 public:
  void AddTo(CLI::App& app);

  // Whether signs go on sheets.
  bool IsGiven() const;

  // The lengths in the unit, checked; what is wrong, options that need --sheet included, is
  // reported.
  std::optional<SheetOptions> Read(LengthUnit unit) const;

 private:
  std::optional<SheetSize> ReadSize(const char* option, const std::string& text) const;

  CLI::App* app_ = nullptr;
  std::string sheet_, frame_;
  std::string margin_ = "5mm", gap_ = "2mm", corner_ = "0", number_height_ = "2.5mm";
  bool pack_ = false, numbers_ = false, marks_ = false;
};

}  // namespace kerno
