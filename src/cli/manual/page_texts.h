// What the manual says of a command beyond its help.
//
// In these texts, `words between backquotes` are typed as they stand.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "cli/command.h"

namespace kerno {

struct Example {
  std::string_view what;
  std::string_view command;  // lines for a shell; the tests run them
};

// A row of a list: a variable, a file, an option.
struct Term {
  std::string_view term;
  std::string_view meaning;
};

// What a command can answer the shell.
enum class Answers {
  kNone,   // it is not of the command line
  kPlain,  // all but kFaceTrouble
  kAll,
};

struct PageText {
  std::string_view command;                       // "cut"; empty: kerno without one
  std::span<const std::string_view> description;  // paragraphs
  std::span<const Term> environment;
  std::span<const Term> files;
  std::span<const Example> examples;
  std::span<const std::string_view> see_also;  // "fc-list(1)"
  Answers answers = Answers::kPlain;
  std::string_view face_trouble = {};  // what kFaceTrouble means here, where that is not the usual
};

// Nothing is said of a command that is not there.
const PageText& TextOf(std::string_view command);

// kerno-desktop: what it is, and what may stand on its command line.
struct DesktopText {
  std::string_view what;
  PageText page;
  std::span<const Term> arguments;
};
const DesktopText& TextOfDesktop();

// What a command answers the shell.
struct StatusText {
  ExitStatus status = kDone;
  std::string_view meaning;
};
std::span<const StatusText> ExitStatusTexts();

}  // namespace kerno
