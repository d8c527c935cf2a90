// The command line: finds the command, reads its options, runs it.

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "base/dump_log.h"
#include "base/nearest_names.h"
#include "base/profile_settings.h"
#include "base/text.h"
#include "cli/console.h"
#include "cli/contours_command.h"
#include "cli/convert_command.h"
#include "cli/cut_command.h"
#include "cli/desktop.h"
#include "cli/faces_command.h"
#include "cli/measure_command.h"
#include "cli/page_command.h"
#include "cli/settings_command.h"
#include "cli/upload_command.h"
#include "platform/console.h"

namespace kerno {
namespace {

std::vector<std::unique_ptr<Command>> AllCommands() {
  std::vector<std::unique_ptr<Command>> commands;
  commands.push_back(std::make_unique<ConvertCommand>());
  commands.push_back(std::make_unique<CutCommand>());
  commands.push_back(std::make_unique<ContoursCommand>());
  commands.push_back(std::make_unique<MeasureCommand>());
  commands.push_back(std::make_unique<FacesCommand>());
  commands.push_back(std::make_unique<SettingsCommand>());
  commands.push_back(std::make_unique<PageCommand>());
  commands.push_back(std::make_unique<UploadCommand>());
  return commands;
}

ExitStatus PrintText(const std::string& text) {
  return Print(text) && FinishPrinting() ? kDone : kFailed;
}

const CLI::App* FindCommand(const CLI::App& app, const std::string& name) {
  for (const CLI::App* command : app.get_subcommands({})) {
    if (command->get_name() == name) return command;
  }
  return nullptr;
}

// Reports a word that is none of the names, with the nearest of them or the command that lists
// them.
void ReportNearest(const std::string& word, std::string why,
                   const std::vector<std::u16string>& names, const std::string& lister) {
  const std::u16string text = Utf8ToUtf16Lossy(word);
  const std::u16string wanted(Unquote(text));
  for (const std::u16string& name : NearestNames(wanted, names, 1)) {
    const bool is_near = 2 * EditDistance(wanted, name) <= name.size();
    why +=
        is_near ? "; the nearest is \"" + Utf16ToUtf8(name) + "\"" : " (" + lister + " lists them)";
  }
  ReportError(word, why);
}

// Says that there is no such command, and which one may have been meant.
ExitStatus ReportUnknown(const CLI::App& app, const std::string& word) {
  std::vector<std::u16string> names;
  for (const CLI::App* command : app.get_subcommands({})) {
    names.push_back(Utf8ToUtf16Lossy(command->get_name()));
  }
  ReportNearest("\"" + word + "\"", "is no command of kerno", names, "kerno help");
  return kWrongUsage;
}

// Whether the word is an option that takes the next word as its value.
bool TakesNext(const CLI::App& command, const std::string& word) {
  const CLI::Option* option = command.get_option_no_throw(word);
  return option && option->get_expected_min() > 0;
}

// The first word of the command that looks like an option and is none; empty where all are known.
std::string UnknownOption(const CLI::App& command, std::span<const std::string> words) {
  for (size_t i = 0; i < words.size() && words[i] != "--"; ++i) {
    std::string name = words[i].substr(0, words[i].find('='));
    if (TakesNext(command, words[i])) {
      ++i;
    } else if (name.starts_with("--") && !command.get_option_no_throw(name)) {
      return name;
    }
  }
  return {};
}

// Names the option that was mistyped, where that is why the words cannot be understood.
void ReportUsage(const CLI::App& app, std::span<const std::string> words, const char* why) {
  const auto chosen = app.get_subcommands();
  const std::string unknown =
      chosen.empty() || words.size() < 2 ? "" : UnknownOption(*chosen[0], words.subspan(2));
  if (unknown.empty()) {
    ReportError("usage", why);
    return;
  }
  std::vector<std::u16string> names;
  for (const CLI::Option* option : chosen[0]->get_options()) {
    const std::string name = option->get_name();
    if (name.starts_with("--") && !option->get_group().empty()) {
      names.push_back(Utf8ToUtf16Lossy(name));
    }
  }
  ReportNearest(unknown, "is no option of kerno " + chosen[0]->get_name(), names,
                "kerno help " + chosen[0]->get_name());
}

// kerno help [COMMAND]
ExitStatus PrintHelp(const CLI::App& app, const std::string& command) {
  if (command.empty()) {  // app.help() would speak of "help", the command that was given
    const auto overview = CLI::AppFormatMode::Normal;
    return PrintText(app.get_formatter()->make_help(&app, app.get_name(), overview));
  }
  const CLI::App* known = FindCommand(app, command);
  return known ? PrintText(known->help(app.get_name())) : ReportUnknown(app, command);
}

ExitStatus Main(const std::vector<std::string>& arguments) {
  CLI::App app("Turns text into outline geometry for machines that cut.", "kerno");
  app.require_subcommand(0, 1);
  app.set_version_flag("--version", "kerno " KERNO_VERSION);
  app.set_help_flag("--help", "print this help and exit");
  const auto commands = AllCommands();
  std::vector<CLI::App*> entries;
  for (const auto& command : commands) {
    entries.push_back(app.add_subcommand(command->Name(), command->Description()));
    command->AddOptions(*entries.back());
  }
  std::string topic;
  CLI::App* help = app.add_subcommand("help", "explain a command");
  help->add_option("COMMAND", topic, "the command to explain");
  const bool has_word = arguments.size() > 1 && !arguments[1].empty() && arguments[1][0] != '-';
  if (has_word && !FindCommand(app, arguments[1])) return ReportUnknown(app, arguments[1]);
  std::vector<const char*> argv;
  argv.reserve(arguments.size());
  for (const std::string& argument : arguments) argv.push_back(argument.c_str());
  try {
    app.parse(static_cast<int>(argv.size()), argv.data());
  } catch (const CLI::CallForHelp&) {
    const auto chosen = app.get_subcommands();
    return PrintText(chosen.empty() ? app.help() : chosen[0]->help(app.get_name()));
  } catch (const CLI::CallForVersion& version) {
    return PrintText(std::string(version.what()) + "\n");
  } catch (const CLI::ParseError& error) {
    ReportUsage(app, arguments, error.what());
    return kWrongUsage;
  }
  if (help->parsed()) return PrintHelp(app, topic);
  const ConsoleNotices notices;
  InstallProfileSettings();
  const RunDump dump(u"kerno");
  for (size_t i = 0; i < commands.size(); ++i) {
    if (entries[i]->parsed()) return commands[i]->Run();
  }
  return StartDesktop();
}

}  // namespace
}  // namespace kerno

int main(int argc, char** argv) {
  kerno::PrepareStandardStreams();
  try {
    return kerno::Main(kerno::ProgramArguments(argc, argv));
  } catch (const std::bad_alloc&) {
    std::fputs("kerno: memory: there is not enough for this text\n", stderr);
    return kerno::kFailed;
  } catch (const std::exception& error) {
    kerno::ReportError("kerno", error.what());
    return kerno::kFailed;
  }
}
