#include "cli/usage_mistakes.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <vector>

#include "base/nearest_names.h"
#include "base/text.h"
#include "cli/console.h"

namespace kerno {
namespace {

// Reports a word that is none of the names, with the one nearest to what was meant or the command
// that lists them.
void ReportNearest(const std::string& word, const std::string& meant, std::string why,
                   const std::vector<std::u16string>& names, const std::string& lister) {
  const std::u16string wanted = Utf8ToUtf16Lossy(meant);
  for (const std::u16string& name : NearestNames(wanted, names, 1)) {
    const bool is_near = 2 * EditDistance(wanted, name) < name.size();
    why +=
        is_near ? "; the nearest is \"" + Utf16ToUtf8(name) + "\"" : " (" + lister + " lists them)";
  }
  ReportError(word, why);
}

// What cannot be understood of a command's words, as far as they tell.
struct Mistake {
  enum class Kind { kNone, kNoOption, kNoValue, kNoPlace };
  Kind kind = Kind::kNone;
  std::string word;
};

// The option as it may have been meant: long options begin with two plain hyphens.
std::string MeantOption(const std::string& word) {
  for (const char* dash : {"\u2010", "\u2011", "\u2012", "\u2013", "\u2014", "\u2212"}) {
    if (word.starts_with(dash))
      return MeantOption("-" + word.substr(std::string_view(dash).size()));
  }
  const size_t first = word.find_first_not_of('-');
  const bool is_word = first == 1 || first == 2;
  const char letter = is_word ? word[first] : ' ';
  if (!((letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z'))) return {};
  return "--" + word.substr(first, word.find('=') - first);
}

// Whether the word is an option of one letter, perhaps with its value in the same word.
bool IsShortOption(const CLI::App& command, const std::string& word) {
  return word.size() > 1 && word[0] == '-' && word[1] != '-' &&
         command.get_option_no_throw(word.substr(0, 2));
}

size_t PlacesFor(const CLI::App& command) {
  return static_cast<size_t>(std::ranges::count_if(
      command.get_options(), [](const CLI::Option* option) { return option->get_positional(); }));
}

// The first mistake in the words after the command.
Mistake FindMistake(const CLI::App& command, std::span<const std::string> words) {
  size_t places = PlacesFor(command);
  Mistake surplus;  // reported where nothing says why
  for (size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    const CLI::Option* option = command.get_option_no_throw(word.substr(0, word.find('=')));
    if (option && word.starts_with('-')) {
      if (option->get_expected_min() == 0) continue;
      if (word.ends_with('=')) return {Mistake::Kind::kNoValue, word.substr(0, word.size() - 1)};
      if (word.find('=') != word.npos) continue;
      const bool has_value = i + 1 < words.size() && !command.get_option_no_throw(words[i + 1]);
      if (!has_value) return {Mistake::Kind::kNoValue, word};
      ++i;
    } else if (!IsShortOption(command, word) && !MeantOption(word).empty()) {
      return {Mistake::Kind::kNoOption, word.substr(0, word.find('='))};
    } else if (!IsShortOption(command, word)) {
      if (places == 0 && surplus.word.empty()) surplus = {Mistake::Kind::kNoPlace, word};
      if (places > 0) --places;
    }
  }
  return surplus;
}

// The first option that stands as "--name=" without a value, for which the next word would be
// taken; empty without one.
std::string FindEmptyOption(const CLI::App& command, std::span<const std::string> words) {
  for (size_t i = 0; i < words.size() && words[i] != "--"; ++i) {
    const size_t equals = words[i].find('=');
    std::string name = words[i].substr(0, equals);
    const CLI::Option* const option =
        name.starts_with('-') ? command.get_option_no_throw(name) : nullptr;
    if (!option || option->get_expected_min() == 0) continue;
    if (equals + 1 == words[i].size()) return name;
    if (equals == words[i].npos) ++i;  // its value, whatever that looks like
  }
  return {};
}

void ReportNoValue(const CLI::App& command, const std::string& option) {
  ReportError(option, "needs a value (" + command.get_option(option)->get_type_name() + ")");
}

// Of the options and of the commands within.
std::vector<std::u16string> NamesIn(const CLI::App& command) {
  std::vector<std::u16string> names;
  for (const CLI::App* inner : command.get_subcommands({})) {
    names.push_back(Utf8ToUtf16Lossy(inner->get_name()));
  }
  for (const CLI::Option* option : command.get_options()) {
    const std::string name = option->get_name();
    if (name.starts_with("--") && !option->get_group().empty()) {
      names.push_back(Utf8ToUtf16Lossy(name));
    }
  }
  return names;
}

}  // namespace

void ReportUnknownCommand(const CLI::App& app, const std::string& word) {
  std::vector<std::u16string> names;
  for (const CLI::App* command : app.get_subcommands({})) {
    names.push_back(Utf8ToUtf16Lossy(command->get_name()));
  }
  ReportNearest("\"" + word + "\"", word, "is no command of kerno", names, "kerno help");
}

bool ReportEmptyOption(const CLI::App& command, std::span<const std::string> words) {
  const std::string empty = FindEmptyOption(command, words);
  if (!empty.empty()) ReportNoValue(command, empty);
  return !empty.empty();
}

void ReportUsage(const CLI::App& app, std::span<const std::string> words, const char* why) {
  const CLI::App* chosen = &app;
  std::string name = "kerno";
  size_t first = 1;
  for (; !chosen->get_subcommands().empty(); ++first) {
    chosen = chosen->get_subcommands()[0];
    name += " " + chosen->get_name();
  }
  const CLI::App& command = *chosen;
  const std::string lister =
      words.size() > 1 && first > 1 ? "kerno help " + words[1] : std::string("kerno help");
  const Mistake mistake =
      words.size() < first ? Mistake{} : FindMistake(command, words.subspan(first));
  const std::string quoted = "\"" + mistake.word + "\"";
  switch (mistake.kind) {
    case Mistake::Kind::kNone:
      ReportError("usage", why);
      break;
    case Mistake::Kind::kNoOption:
      ReportNearest(mistake.word, MeantOption(mistake.word), "is no option of " + name,
                    NamesIn(command), lister);
      break;
    case Mistake::Kind::kNoValue:
      ReportNoValue(command, mistake.word);
      break;
    case Mistake::Kind::kNoPlace:
      if (command.get_option_no_throw("TEXT")) {
        ReportError(quoted, "is a second text; a text with blanks stands in quotes");
      } else if (PlacesFor(command) > 0) {
        ReportError(quoted, "is more than " + name + " takes");
      } else {
        ReportNearest(quoted, mistake.word, "is nothing that " + name + " takes", NamesIn(command),
                      lister);
      }
      break;
  }
}

}  // namespace kerno
