// The commands and their options as the help tells of them.
#pragma once

#include <string>
#include <vector>

#include "cli/manual/values.h"

namespace CLI {
class App;
}

namespace kerno {

struct OptionText {
  std::string name;   // "--face", "-o"; of an argument "TEXT"
  std::string value;  // what stands for its value, "NAME"; empty for a flag
  std::string default_value;
  std::string description;
  bool repeats = false;
  bool required = false;
  Values values;
};

struct OptionGroup {
  std::string name;
  std::vector<OptionText> options;
};

struct CommandText {
  std::string name;  // as typed after the command that it is part of: "cut", "get"
  std::string description;
  std::vector<OptionText> arguments;  // in their order
  std::vector<OptionGroup> groups;    // as the help has them
  std::vector<CommandText> inner;
};

// All that the help shows of a command; hidden options are left out.
CommandText Describe(const CLI::App& app);

// The options of every group, in order.
std::vector<OptionText> AllOptions(const CommandText& command);

}  // namespace kerno
