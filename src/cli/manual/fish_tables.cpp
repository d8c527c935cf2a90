#include "cli/manual/completions.h"
#include "cli/manual/shell_words.h"

namespace kerno {
namespace {

// "complete -c kerno -n '__kerno_at cut'": a rule for a place in the words.
std::string Rule(const std::string& place, const std::string& path) {
  return "complete -c kerno -n " + FishQuoted(place + (path.empty() ? "" : " " + path));
}

std::string Described(const std::string& text) {
  return " -d " + FishQuoted(text) + "\n";
}

// What offers the values: " -x -a '(__kerno_face)'".
std::string Offer(const Values& values) {
  const std::string words = JoinedWords(values.words);
  switch (values.kind) {
    case Values::Kind::kFree:
      return " -x";
    case Values::Kind::kWords:
      return " -x -a " + FishQuoted(words);
    case Values::Kind::kFile:
      if (words.empty()) return " -r -F";
      break;
    case Values::Kind::kOutput:
    case Values::Kind::kStrokeFont:
      return " -r -F -a " + FishQuoted("(__kerno_" + KindName(values) + " " + words + ")");
    default:
      break;
  }
  return " -x -a " +
         FishQuoted("(__kerno_" + KindName(values) + (words.empty() ? "" : " " + words) + ")");
}

std::string OptionRule(const std::string& path, const OptionText& option) {
  const bool is_long = option.name.starts_with("--");
  // Before a command, kerno has options of its own.
  std::string rule = Rule(path.empty() ? "__kerno_place 0" : "__kerno_at", path) +
                     (is_long ? " -l " : " -s ") + option.name.substr(is_long ? 2 : 1);
  if (!option.value.empty()) rule += Offer(option.values);
  return rule + Described(option.description);
}

std::string ArgumentRule(const std::string& path, size_t place, const OptionText& argument) {
  if (argument.values.kind == Values::Kind::kFree) return {};
  const std::string number = argument.repeats ? "any" : std::to_string(place);
  std::string offer = Offer(argument.values);
  offer.erase(1, 3);  // an argument has no "-x" or "-r": these are of options
  return Rule("__kerno_place " + number, path) + offer + Described(argument.description);
}

}  // namespace

std::string FishTables(const CommandText& program) {
  std::string out = "complete -c kerno -f\n";
  ForEachCommand(program, [&](const std::string& path, const CommandText& command) {
    for (const CommandText& inner : command.inner) {
      out += Rule("__kerno_place 0", path) + " -a " + inner.name + Described(inner.description);
    }
    for (const OptionText& option : AllOptions(command)) out += OptionRule(path, option);
    for (size_t i = 0; i < command.arguments.size(); ++i) {
      out += ArgumentRule(path, i, command.arguments[i]);
    }
  });
  std::string commands, sections, keys;
  for (const CommandText& command : program.inner) {
    commands += "  echo " + FishQuoted(command.name) + "\n";
  }
  for (const SettingNames& section : SettingSections()) {
    sections += "  echo " + FishQuoted(section.section) + "\n";
    keys += "    case " + FishQuoted(section.section) + "\n";
    for (const std::string& key : section.keys) keys += "      echo " + FishQuoted(key) + "\n";
  }
  return out + "\nfunction __kerno_command\n" + commands + "end\n\nfunction __kerno_section\n" +
         sections + "end\n\nfunction __kerno_key\n  switch (commandline -opc)[-1]\n" + keys +
         "  end\nend\n";
}

}  // namespace kerno
