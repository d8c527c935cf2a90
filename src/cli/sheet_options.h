// The options that put signs on sheets of material.
#pragma once

#include <cstdint>
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
  // False, with a report, where options need --sheet.
  bool AreUsable() const;

  // How often each sign is set; what Read has found.
  int32_t copies() const { return count_; }

  // The lengths in the unit, checked; what is wrong is reported.
  std::optional<SheetOptions> Read(LengthUnit unit);

 private:
  std::optional<SheetSize> ReadSize(const char* option, const std::string& text) const;

  CLI::App* app_ = nullptr;
  std::string sheet_, frame_;
  std::string margin_ = "5mm", gap_ = "2mm", corner_ = "0", number_height_ = "2.5mm";
  std::string copies_ = "1";
  bool pack_ = false, numbers_ = false, marks_ = false;
  int32_t count_ = 1;
};

}  // namespace kerno
