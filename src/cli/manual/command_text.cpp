#include "cli/manual/command_text.h"

#include <CLI/CLI.hpp>
#include <algorithm>

namespace kerno {
namespace {

// Long names before short ones, with their hyphens, as users are told to type them.
std::string ShownName(const CLI::Option& option) {
  if (option.get_positional()) return option.get_name(true);
  return option.get_lnames().empty() ? "-" + option.get_snames()[0] : "--" + option.get_lnames()[0];
}

OptionText DescribeOption(const CLI::Option& option) {
  OptionText text;
  text.name = ShownName(option);
  const bool is_flag = option.get_type_size() == 0;
  if (!is_flag && !option.get_positional()) text.value = option.get_type_name();
  text.default_value = is_flag ? "" : option.get_default_str();
  text.description = option.get_description();
  text.repeats = !is_flag && option.get_expected_max() >= CLI::detail::expected_max_vector_size;
  text.required = option.get_required();
  text.values = ValuesOf(text.name);
  return text;
}

}  // namespace

CommandText Describe(const CLI::App& app) {
  CommandText command;
  command.name = app.get_name();
  command.description = app.get_description();
  for (const CLI::Option* option : app.get_options()) {
    const std::string group = option->get_group();
    if (option->get_positional()) {
      command.arguments.push_back(DescribeOption(*option));
    } else if (!group.empty()) {
      auto place = std::ranges::find(command.groups, group, &OptionGroup::name);
      if (place == command.groups.end()) place = command.groups.insert(place, {group, {}});
      place->options.push_back(DescribeOption(*option));
    }
  }
  for (const CLI::App* inner : app.get_subcommands({})) command.inner.push_back(Describe(*inner));
  return command;
}

std::vector<OptionText> AllOptions(const CommandText& command) {
  std::vector<OptionText> options;
  for (const OptionGroup& group : command.groups) {
    options.insert(options.end(), group.options.begin(), group.options.end());
  }
  return options;
}

}  // namespace kerno
