#include "cli/manual/man_page.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <string_view>

#include "base/text.h"
#include "cli/manual/page_texts.h"

namespace kerno {
namespace {

// Where hyphens stand: those of options can be searched for and copied.
enum class Hyphens { kText, kTyped };

// A character as the language takes it within a line.
std::string Escaped(char32_t ch, Hyphens hyphens) {
  switch (ch) {
    case U'\\':
      return "\\e";
    case U'-':
      return hyphens == Hyphens::kTyped ? "\\-" : "-";
    case U'\'':
      return "\\(aq";
    case U'"':
      return "\\(dq";
    case U'`':
      return "\\(ga";
    case U'^':
      return "\\(ha";
    case U'~':
      return "\\(ti";
    default:
      break;
  }
  if (ch < 0x80) return std::string(1, static_cast<char>(ch));
  char code[16];
  std::snprintf(code, sizeof code, "\\[u%04X]", static_cast<unsigned>(ch));
  return code;
}

std::string Escaped(std::string_view text, Hyphens hyphens) {
  std::string out;
  const std::u16string wide = Utf8ToUtf16Lossy(text);
  for (size_t at = 0; at < wide.size();) out += Escaped(NextCharacter(wide, &at), hyphens);
  return out;
}

// Words that are typed: no line ends within one.
std::string Typed(std::string_view text) {
  std::string out = "\\%" + Escaped(text, Hyphens::kTyped);
  for (size_t at = 0; (at = out.find(' ', at)) != out.npos; at += 3) out.replace(at, 1, " \\%");
  return out;
}

// One argument of a macro: in quotes, and never the name of another macro.
std::string Argument(std::string_view text) {
  return "\"\\&" + Typed(text) + "\"";
}

// Words of an option stand as they are typed: "--fit", "-o".
std::string EscapedWords(std::string_view text) {
  std::string out;
  while (!text.empty()) {
    const size_t end = std::min(text.find(' '), text.size());
    const std::string_view word = text.substr(0, end);
    const bool typed = word.find_first_not_of("(\"") == word.find('-');
    out += typed ? Typed(word) : Escaped(word, Hyphens::kText);
    if (end < text.size()) out += ' ';
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return out;
}

// A paragraph: what stands between backquotes in bold letters, each sentence on a line of its own.
std::string Paragraph(std::string_view text) {
  std::string out = "\\&";  // a point or an apostrophe at the start would be a macro
  bool typed = false;
  while (!text.empty()) {
    const size_t end = std::min(text.find('`'), text.size());
    const std::string_view part = text.substr(0, end);
    out += typed ? "\\fB" + Typed(part) + "\\fP" : EscapedWords(part);
    text.remove_prefix(std::min(end + 1, text.size()));
    typed = !typed;
  }
  for (size_t at = 0; (at = out.find(". ", at)) != out.npos;) out.replace(at, 2, ".\n\\&");
  return out + "\n";
}

// "November 22, 2026"
std::string LongDate(const std::string& date) {
  constexpr std::array<const char*, 12> kMonths = {"January",   "February", "March",    "April",
                                                   "May",       "June",     "July",     "August",
                                                   "September", "October",  "November", "December"};
  unsigned year = 0, month = 1, day = 1;
  if (std::sscanf(date.c_str(), "%u-%u-%u", &year, &month, &day) != 3) return date;
  const char* const name = kMonths.at(std::clamp(month, 1U, 12U) - 1);
  return std::string(name) + " " + std::to_string(day) + ", " + std::to_string(year);
}

std::string Upper(std::string text) {
  for (char& c : text) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return text;
}

std::string Head(const std::string& name, const std::string& what, const PageFrame& frame) {
  return ".Dd " + LongDate(frame.date) + "\n.Dt " + Upper(name) + " 1\n.Os\n.nh\n.Sh NAME\n.Nm " +
         name + "\n.Nd " + Escaped(what, Hyphens::kText) + "\n";
}

// ".It Fl \-face Ar NAME"
std::string ItemHead(const OptionText& option) {
  std::string line = ".It Fl " + Argument(option.name.substr(1));
  if (!option.value.empty()) line += " Ar " + Argument(option.value);
  if (option.repeats) line += " No ...";
  return line + "\n";
}

// A description as a sentence; a word that is typed keeps its case.
std::string Sentence(std::string text) {
  const bool typed = text.substr(0, text.find(' ')).ends_with(':');
  if (!typed) text.replace(0, 1, Upper(text.substr(0, 1)));
  return text.ends_with('.') ? text : text + ".";
}

std::string OptionItem(const OptionText& option) {
  std::string text = Sentence(option.description);
  if (!option.default_value.empty()) text += " The default is `" + option.default_value + "`.";
  return ItemHead(option) + Paragraph(text);
}

std::string OptionList(const std::vector<OptionText>& options) {
  std::string out = ".Bl -tag -width Ds\n";
  for (const OptionText& option : options) out += OptionItem(option);
  return out + ".El\n";
}

// "SECTION KEY", each as the help has it.
std::string ArgumentWords(const CommandText& command) {
  std::string words;
  for (const OptionText& argument : command.arguments) {
    words += (argument.required ? " Ar " : " Op Ar ") + Argument(argument.name);
    if (argument.repeats) words += " No ...";
  }
  return words;
}

std::string Synopsis(const CommandText& command) {
  const auto line = [](const std::string& name, const std::string& words) {
    return ".Nm " + name + "\n" + words;
  };
  const std::string name = "kerno " + command.name;
  std::string out = ".Sh SYNOPSIS\n";
  for (const CommandText& inner : command.inner) {
    const std::string words = ArgumentWords(inner);
    out += line(name + " " + inner.name, words.empty() ? "" : "." + words.substr(1) + "\n");
  }
  if (!command.inner.empty()) return out;
  out += line(name, ".Op Ar OPTIONS\n");
  const std::string words = ArgumentWords(command);
  return words.empty() ? out : out + "." + words.substr(1) + "\n";
}

std::string Description(const PageText& text, std::string_view otherwise) {
  std::string out = ".Sh DESCRIPTION\n";
  bool first = true;
  for (const std::string_view paragraph : text.description) {
    if (!first) out += ".Pp\n";
    out += Paragraph(paragraph);
    first = false;
  }
  return first ? out + Paragraph(otherwise) : out;
}

std::string Options(const CommandText& command) {
  std::string out;
  for (const OptionText& argument : command.arguments) {
    out += (out.empty() ? ".Bl -tag -width Ds\n" : "") + std::string(".It Ar ") +
           Argument(argument.name) + (argument.repeats ? " No ...\n" : "\n") +
           Paragraph(Sentence(argument.description));
  }
  if (!out.empty()) out += ".El\n";
  for (const OptionGroup& group : command.groups) {
    if (&group != command.groups.data()) out += ".Ss " + group.name + "\n";
    out += OptionList(group.options);
  }
  return out.empty() ? out : ".Sh OPTIONS\n" + out;
}

// The commands within one, with their own arguments.
std::string InnerCommands(const CommandText& command) {
  if (command.inner.empty()) return {};
  std::string out = ".Sh COMMANDS\n.Bl -tag -width Ds\n";
  for (const CommandText& inner : command.inner) {
    out += ".It Cm " + Argument(inner.name) + ArgumentWords(inner) + "\n";
    out += Paragraph(Sentence(inner.description));
    for (const OptionText& argument : inner.arguments) {
      out += ".Ar " + Argument(argument.name) + " :\n" + Paragraph(Sentence(argument.description));
    }
  }
  return out + ".El\n";
}

std::string Terms(const char* heading, const char* macro, std::span<const Term> terms) {
  if (terms.empty()) return {};
  std::string out = std::string(".Sh ") + heading + "\n.Bl -tag -width Ds\n";
  for (const Term& term : terms) {
    out += std::string(".It ") + macro + " " + Argument(term.term) + "\n" + Paragraph(term.meaning);
  }
  return out + ".El\n";
}

std::string Status(const PageText& page) {
  if (page.answers == Answers::kNone) return {};
  std::string out = ".Sh EXIT STATUS\n.Bl -tag -width Ds\n";
  for (const StatusText& text : ExitStatusTexts()) {
    const bool of_face = text.status == kFaceTrouble;
    if (of_face && page.answers != Answers::kAll) continue;
    const bool has_own = of_face && !page.face_trouble.empty();
    out += ".It " + std::to_string(text.status) + "\n" +
           Paragraph(has_own ? page.face_trouble : text.meaning);
  }
  return out + ".El\n";
}

std::string Examples(std::span<const Example> examples) {
  if (examples.empty()) return {};
  std::string out = ".Sh EXAMPLES\n";
  for (const Example& example : examples) {
    out += Paragraph(example.what) + ".Bd -literal -offset indent\n";
    std::string_view lines = example.command;
    while (!lines.empty()) {
      const size_t end = std::min(lines.find('\n'), lines.size());
      out += "\\&" + Escaped(lines.substr(0, end), Hyphens::kTyped) + "\n";
      lines.remove_prefix(std::min(end + 1, lines.size()));
    }
    out += ".Ed\n";
    if (&example != &examples.back()) out += ".Pp\n";
  }
  return out;
}

// "kerno-cut(1)" and the like, in the order of their names.
std::string SeeAlso(std::span<const std::string_view> pages) {
  std::vector<std::string_view> sorted(pages.begin(), pages.end());
  std::ranges::sort(sorted);
  std::string out = sorted.empty() ? "" : ".Sh SEE ALSO\n";
  for (const std::string_view page : sorted) {
    const size_t open = page.find('(');
    out += ".Xr " + std::string(page.substr(0, open)) + " " +
           std::string(page.substr(open + 1, page.size() - open - 2)) +
           (page == sorted.back() ? "\n" : " ,\n");
  }
  return out;
}

// What follows the options.
std::string Rest(const PageText& text) {
  return Terms("ENVIRONMENT", "Ev", text.environment) + Terms("FILES", "Pa", text.files) +
         Status(text) + Examples(text.examples) + SeeAlso(text.see_also);
}

}  // namespace

std::string ProgramPage(const CommandText& program, const PageFrame& frame) {
  const PageText& text = TextOf("");
  std::string out = Head("kerno", "turn text into outline geometry for machines that cut", frame);
  out += ".Sh SYNOPSIS\n.Nm kerno\n.Op Ar OPTIONS\n.Op Ar COMMAND No ...\n";
  out += Description(text, program.description) + Options(program);
  out += ".Sh COMMANDS\n.Bl -tag -width Ds\n";
  for (const CommandText& command : program.inner) {
    out += ".It Xr kerno-" + command.name + " 1\n" + Paragraph(Sentence(command.description));
  }
  return out + ".El\n" + Rest(text);
}

std::string CommandPage(const CommandText& command, const PageFrame& frame) {
  const PageText& text = TextOf(command.name);
  return Head("kerno-" + command.name, command.description, frame) + Synopsis(command) +
         Description(text, Sentence(command.description)) + InnerCommands(command) +
         Options(command) + Rest(text);
}

std::string DesktopPage(const PageFrame& frame) {
  const DesktopText& text = TextOfDesktop();
  std::string out = Head("kerno-desktop", std::string(text.what), frame);
  out += ".Sh SYNOPSIS\n.Nm kerno-desktop\n.Op Ar OPTIONS\n.Op Ar FILE No ...\n";
  out += Description(text.page, text.what) + ".Sh OPTIONS\n.Bl -tag -width Ds\n";
  for (const Term& argument : text.arguments) {
    const bool is_option = argument.term.starts_with('-');
    const size_t blank = std::min(argument.term.find(' '), argument.term.size());
    out += is_option ? ".It Fl " + Argument(argument.term.substr(1, blank - 1))
                     : ".It Ar " + Argument(argument.term) + " No ...";
    if (is_option && blank < argument.term.size()) {
      out += " Ar " + Argument(argument.term.substr(blank + 1));
    }
    out += "\n" + Paragraph(argument.meaning);
  }
  return out + ".El\n" + Rest(text.page);
}

}  // namespace kerno
