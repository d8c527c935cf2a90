#include "cli/program.h"

#include <CLI/CLI.hpp>
#include <span>
#include <utility>

#include "base/dump_log.h"
#include "base/profile_settings.h"
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
#include "cli/usage_mistakes.h"

namespace kerno {
namespace {

ExitStatus PrintText(const std::string& text) {
  return Print(text) && FinishPrinting() ? kDone : kFailed;
}

// Without the empty line that stands for a group of hidden options.
class HelpFormatter final : public CLI::Formatter {
 public:
  std::string make_help(const CLI::App* app, std::string name,
                        CLI::AppFormatMode mode) const override {
    std::string text = CLI::Formatter::make_help(app, std::move(name), mode);
    while (text.ends_with("\n\n")) text.pop_back();
    return text;
  }
};

}  // namespace

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

Program::Program()
    : app_(std::make_unique<CLI::App>("Turns text into outline geometry for machines that cut.",
                                      "kerno")) {
  app_->formatter(std::make_shared<HelpFormatter>());
  app_->require_subcommand(0, 1);
  app_->set_version_flag("--version", "kerno " KERNO_VERSION);
  app_->set_help_flag("--help", "print this help and exit");
  for (std::unique_ptr<Command>& command : AllCommands()) {
    CLI::App* const entry = app_->add_subcommand(command->Name(), command->Description());
    command->AddOptions(*entry);
    entries_.push_back({std::move(command), entry});
  }
  help_ = app_->add_subcommand("help", "explain a command");
  help_->add_option("COMMAND", topic_, "the command to explain");
}

Program::~Program() = default;

CLI::App* Program::FindCommand(const std::string& name) const {
  for (CLI::App* const command : app_->get_subcommands({})) {
    if (command->get_name() == name) return command;
  }
  return nullptr;
}

// kerno help [COMMAND]
ExitStatus Program::PrintHelp() const {
  if (topic_.empty()) {  // app.help() would speak of "help", the command that was given
    const auto overview = CLI::AppFormatMode::Normal;
    return PrintText(app_->get_formatter()->make_help(app_.get(), app_->get_name(), overview));
  }
  const CLI::App* const known = FindCommand(topic_);
  if (known) return PrintText(known->help(app_->get_name()));
  ReportUnknownCommand(*app_, topic_);
  return kWrongUsage;
}

ExitStatus Program::Run(const std::vector<std::string>& arguments) {
  const bool has_word = arguments.size() > 1 && !arguments[1].empty() && arguments[1][0] != '-';
  const CLI::App* const command = has_word ? FindCommand(arguments[1]) : nullptr;
  if (has_word && !command) {
    ReportUnknownCommand(*app_, arguments[1]);
    return kWrongUsage;
  }
  std::vector<const char*> argv;
  argv.reserve(arguments.size());
  for (const std::string& argument : arguments) argv.push_back(argument.c_str());
  try {
    if (command && ReportEmptyOption(*command, std::span(arguments).subspan(2))) return kWrongUsage;
    app_->parse(static_cast<int>(argv.size()), argv.data());
  } catch (const CLI::CallForHelp&) {
    const auto chosen = app_->get_subcommands();
    return PrintText(chosen.empty() ? app_->help() : chosen[0]->help(app_->get_name()));
  } catch (const CLI::CallForVersion& version) {
    return PrintText(std::string(version.what()) + "\n");
  } catch (const CLI::ParseError& error) {
    ReportUsage(*app_, arguments, error.what());
    return kWrongUsage;
  }
  return help_->parsed() ? PrintHelp() : RunChosen();
}

// The command, or without one the window.
ExitStatus Program::RunChosen() {
  const ConsoleNotices notices;
  // Settings are read before the command runs, and may have something to tell.
  for (const CLI::App* chosen : app_->get_subcommands()) {
    const CLI::Option* const quiet = chosen->get_option_no_throw("--quiet");
    if (quiet && quiet->count() > 0) SilenceWarnings();
  }
  InstallProfileSettings();
  const RunDump dump(u"kerno");
  for (const Entry& entry : entries_) {
    if (entry.app->parsed()) return entry.command->Run();
  }
  return StartDesktop();
}

}  // namespace kerno
