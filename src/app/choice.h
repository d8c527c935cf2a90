// Options whose value is one of a few words.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include "app/option_values.h"

namespace kerno {

// Puts what `word` stands for into *value; reports under the option's name when it is none of the
// choices.
template <class Value>
bool Choose(std::string_view option, std::string_view word,
            std::initializer_list<std::pair<std::string_view, Value>> choices, Value* value) {
  std::string known;
  for (const auto& [choice, meaning] : choices) {
    if (word == choice) {
      *value = meaning;
      return true;
    }
    known.append(known.empty() ? "" : ", ").append(choice);
  }
  ReportChoice(option, word, known);
  return false;
}

}  // namespace kerno
