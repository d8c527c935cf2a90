// Options whose value is one of a few words. A table of them serves the help, the reading, the
// manual and the completions.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "app/option_values.h"

namespace kerno {

enum class Spelling {
  kTold,   // what the help tells of
  kOther,  // taken as well
};

template <class Value>
struct Choice {
  std::string_view word;
  Value value;
  Spelling spelling = Spelling::kTold;
};

template <class Value, size_t N>
struct Choices {
  std::string_view option;  // "--align"
  std::array<Choice<Value>, N> all;
};

template <class Value, size_t N>
constexpr Choices<Value, N> MakeChoices(std::string_view option, Choice<Value> (&&all)[N]) {
  return {option, std::to_array(std::move(all))};
}

// The words that the help tells of, in their order.
template <class Value, size_t N>
std::vector<std::string> ToldWords(const Choices<Value, N>& choices) {
  std::vector<std::string> words;
  for (const Choice<Value>& choice : choices.all) {
    if (choice.spelling == Spelling::kTold) words.emplace_back(choice.word);
  }
  return words;
}

// The same as the help shows them: "left|centre|right".
template <class Value, size_t N>
std::string ChoiceText(const Choices<Value, N>& choices) {
  std::string text;
  for (const std::string& word : ToldWords(choices)) text += (text.empty() ? "" : "|") + word;
  return text;
}

// Puts what `word` stands for into *value; reports under the option's name when it is none of the
// choices.
template <class Value, size_t N>
bool Choose(const Choices<Value, N>& choices, std::string_view word, Value* value) {
  std::string known;
  for (const Choice<Value>& choice : choices.all) {
    if (word == choice.word) {
      *value = choice.value;
      return true;
    }
    known.append(known.empty() ? "" : ", ").append(choice.word);
  }
  ReportChoice(choices.option, word, known);
  return false;
}

}  // namespace kerno
