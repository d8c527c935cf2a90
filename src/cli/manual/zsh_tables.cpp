#include <algorithm>

#include "cli/manual/completions.h"
#include "cli/manual/shell_words.h"

namespace kerno {
namespace {

// The characters that have a meaning in a rule of _arguments.
std::string Masked(std::string_view text, std::string_view masked) {
  std::string out;
  for (const char c : text) {
    if (masked.find(c) != masked.npos) out += '\\';
    out += c;
  }
  return out;
}

// What offers the values; a blank at its start keeps _arguments from adding words of its own.
std::string Action(const Values& values) {
  const std::string words = JoinedWords(values.words);
  switch (values.kind) {
    case Values::Kind::kFree:
      return " ";
    case Values::Kind::kWords:
      return "(" + words + ")";
    case Values::Kind::kFolder:
      return "_files -/";
    default:
      return " _kerno_" + KindName(values) + (words.empty() ? "" : " " + words);
  }
}

std::string OptionRule(const OptionText& option) {
  const bool is_short = !option.name.starts_with("--");
  std::string rule = option.repeats ? "*" : "";
  rule += option.name;
  if (!option.value.empty()) rule += is_short ? "+" : "=";
  rule += "[" + Masked(option.description, "[]\\") + "]";
  if (option.value.empty()) return rule;
  return rule + ":" + Masked(option.value, ":\\") + ":" + Action(option.values);
}

std::string ArgumentRule(const OptionText& argument) {
  const char* const place = argument.repeats ? "*:" : argument.required ? ":" : "::";
  // A state that nobody looks at: a message would keep zsh from completing an option there.
  const bool is_free = argument.values.kind == Values::Kind::kFree;
  return place + Masked(argument.name, ":\\") + ":" +
         (is_free ? "->free" : Action(argument.values));
}

// "_kerno-settings-get"
std::string FunctionOf(const std::string& path) {
  std::string name = "_kerno";
  std::string_view rest = path;
  while (!rest.empty()) {
    const size_t end = std::min(rest.find(' '), rest.size());
    name.append("-").append(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return name;
}

std::string CommandFunction(const std::string& path, const CommandText& command) {
  std::string rules;
  for (const OptionText& option : AllOptions(command)) {
    rules += " \\\n    " + Quoted(OptionRule(option));
  }
  const std::string name = path.empty() ? "_kerno-program" : FunctionOf(path);
  std::string out = name + "() {\n";
  if (command.inner.empty()) {
    for (const OptionText& argument : command.arguments) {
      rules += " \\\n    " + Quoted(ArgumentRule(argument));
    }
    return out + "  _arguments" + rules + "\n}\n\n";
  }
  out += "  local -a commands=(";
  for (const CommandText& inner : command.inner) {
    out += "\n    " + Quoted(inner.name + ":" + inner.description);
  }
  return out + ")\n  _kerno_within " + FunctionOf(path) + rules + "\n}\n\n";
}

}  // namespace

std::string ZshTables(const CommandText& program) {
  std::string out;
  ForEachCommand(program, [&](const std::string& path, const CommandText& command) {
    out += CommandFunction(path, command);
  });
  std::string commands, sections, keys;
  for (const CommandText& command : program.inner) {
    commands += " " + Quoted(command.name + ":" + command.description);
  }
  for (const SettingNames& section : SettingSections()) {
    sections += " " + Quoted(section.section);
    keys += "    " + Quoted(section.section) + ") names=(";
    for (const std::string& key : section.keys) keys += " " + Quoted(key);
    keys += " ) ;;\n";
  }
  return out + "_kerno_command() {\n  local -a commands=(" + commands +
         " )\n  _describe command commands\n}\n\n" + "_kerno_section() {\n  local -a names=(" +
         sections + " )\n  _kerno_add section\n}\n\n" +
         "_kerno_key() {\n  local -a names\n  case ${(Q)words[CURRENT-1]} in\n" + keys +
         "  esac\n  _kerno_add key\n}\n";
}

}  // namespace kerno
