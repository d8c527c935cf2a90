// How signs go on sheets of material, as texts: the options of `kerno cut` and the fields of the
// window hold them.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "app/face_texts.h"
#include "app/sheets.h"

namespace kerno {

struct SheetTexts {
  std::string sheet, frame;
  std::string margin = "5mm", gap = "2mm", corner = "0", number_height = "2.5mm";
  std::string copies = "1";  // how often each sign is set
  bool pack = false, numbers = false, marks = false;
  GivenOptions given;

  // Calls `visit` with every value and its option ("--frame"), always in the same order.
  void ForEachText(const std::function<void(const char* option, std::string* value)>& visit);
  void ForEachFlag(const std::function<void(const char* option, bool* value)>& visit);

  bool IsGiven(std::string_view option) const { return given.contains(option); }
};

// Checks all values, and that they go with the options of the cut that are given. The lengths
// become those of the unit. What is wrong is reported under the option's name.
[[nodiscard]] bool ReadSheets(const SheetTexts& texts, const GivenOptions& of_cut, LengthUnit unit,
                              SheetOptions* options, int32_t* copies);

}  // namespace kerno
