#include "cli/manual/completions.h"
#include "cli/manual/shell_words.h"

namespace kerno {
namespace {

std::string Function(const char* what, const char* name, const std::string& cases,
                     const char* otherwise = "") {
  return std::string("# ") + what + "\n" + name + "() {\n  case $1 in\n" + cases + otherwise +
         "  esac\n}\n\n";
}

std::string Case(const std::string& pattern, const std::string& action) {
  return "    " + pattern + ") " + action + " ;;\n";
}

std::string KindOf(const Values& values) {
  const std::string kind = KindName(values);
  return "kind=(" + (kind.empty() ? "free" : kind) +
         (values.words.empty() ? "" : " " + JoinedWords(values.words)) + ")";
}

}  // namespace

std::string BashTables(const CommandText& program) {
  std::string commands, options, values, arguments, sections, keys;
  ForEachCommand(program, [&](const std::string& path, const CommandText& command) {
    std::string names, inner;
    for (const OptionText& option : AllOptions(command)) {
      names += " " + option.name;
      if (option.value.empty()) continue;
      values += Case(Quoted(path + " " + option.name), KindOf(option.values));
    }
    options += Case(Quoted(path), "echo" + names);
    for (const CommandText& within : command.inner) inner += " " + within.name;
    if (!inner.empty()) commands += Case(Quoted(path), "echo" + inner);
    for (size_t i = 0; i < command.arguments.size(); ++i) {
      const OptionText& argument = command.arguments[i];
      // Any place, where the argument repeats.
      const std::string place =
          Quoted(path + " ").append(argument.repeats ? "*" : std::to_string(i));
      arguments += Case(place, KindOf(argument.values));
    }
  });
  for (const SettingNames& section : SettingSections()) {
    sections += "  printf '%s\\n' " + Quoted(section.section) + "\n";
    std::string words;
    for (const std::string& key : section.keys) words += " " + Quoted(key);
    keys += Case(Quoted(section.section), "printf '%s\\n'" + words);
  }
  const char* const none = "    *) return 1 ;;\n";
  return Function("The commands within a command.", "_kerno_commands", commands) +
         Function("The options of a command.", "_kerno_options", options) +
         "# Sets kind to what stands after an option of a command; false where nothing does.\n"
         "_kerno_value() {\n  case \"$1 $2\" in\n" +
         values + none + "  esac\n}\n\n" +
         "# The same for an argument of a command, counted from 0.\n"
         "_kerno_argument() {\n  case \"$1 $2\" in\n" +
         arguments + none + "  esac\n}\n\n" +
         "# The sections of the settings.\n_kerno_sections() {\n" + sections + "}\n\n" +
         Function("The settings of a section.", "_kerno_keys", keys);
}

}  // namespace kerno
