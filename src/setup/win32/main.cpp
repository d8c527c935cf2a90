// kerno-setup-helper: the steps of the installer and the uninstaller that need texts of any length,
// or must be done whole or not at all. It is part of them and is not installed.
//
// kerno-setup-helper STEP FOLDER [OTHER_FOLDER] [--report FILE]
//
// The report is one line in UTF-16, the thing that is in the way; empty where all went well. The
// exit status is a SetupOutcome.
#include <algorithm>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iterator>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "platform/file_replacement.h"
#include "platform/win32/windows_api.h"
#include "setup/installed_files.h"
#include "setup/settings_files.h"
#include "setup/win32/user_registry.h"

namespace kerno {
namespace {

using std::filesystem::path;

struct Step {
  std::wstring_view name;
  SetupResult (*run)(const path& folder, const path& other);
};

SetupResult ForgetSettings(const path& folder) {
  SetupResult result = RemoveSettings(folder);
  return result.ok() ? RemoveNotes() : std::move(result);
}

SetupResult RemoveInstallation(const path& folder) {
  RemoveEmptySettingsFolders(folder);
  return RemoveFiles(folder);
}

// Takes a version away that stands in another folder than the new one, under whatever name.
SetupResult LeaveFormer(const path& folder, const path& former) {
  std::error_code error;
  if (std::filesystem::equivalent(folder, former, error) || error) return {};
  if (SetupResult result = CarrySettings(former, folder); !result.ok()) return result;
  SetupResult result = RemoveInstallation(former);
  return result.outcome == SetupOutcome::kNotInstalled ? SetupResult() : std::move(result);
}

constexpr Step kSteps[] = {
    {L"check", [](const path& folder, const path&) { return CheckPrograms(folder); }},
    {L"place", [](const path& folder, const path& staged) { return PlaceFiles(staged, folder); }},
    {L"remove", [](const path& folder, const path&) { return RemoveInstallation(folder); }},
    {L"add-path", [](const path& folder, const path&) { return AddToUserPath(folder); }},
    {L"remove-path", [](const path& folder, const path&) { return RemoveFromUserPath(folder); }},
    {L"leave-former", LeaveFormer},
    {L"forget-settings", [](const path& folder, const path&) { return ForgetSettings(folder); }},
};

SetupResult WrongUsage() {
  return {SetupOutcome::kWrongUsage, Status::Error(Failure::kOther, u"usage", u"")};
}

std::vector<std::wstring> Arguments() {
  int count = 0;
  LPWSTR* const words = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::wstring> arguments(words, words + count);
  LocalFree(words);
  arguments.erase(arguments.begin());
  return arguments;
}

// The report's file; the words that name it are taken out.
path TakeReport(std::vector<std::wstring>* arguments) {
  const auto word = std::ranges::find(*arguments, L"--report");
  if (word == arguments->end() || std::next(word) == arguments->end()) return {};
  path report = *std::next(word);
  arguments->erase(word, word + 2);
  return report;
}

SetupResult RunStep(const std::vector<std::wstring>& arguments) {
  if (arguments.size() < 2) return WrongUsage();
  const auto* const step = std::ranges::find(kSteps, arguments[0], &Step::name);
  if (step == std::end(kSteps)) return WrongUsage();
  return step->run(arguments[1], arguments.size() > 2 ? path(arguments[2]) : path());
}

void Report(const path& file, const std::u16string& what) {
  const std::string_view bytes(reinterpret_cast<const char*>(what.data()),
                               what.size() * sizeof(char16_t));
  (void)ReplaceFile(file, bytes);  // without it the message names nothing
}

int Run() {
  std::vector<std::wstring> arguments = Arguments();
  const path report = TakeReport(&arguments);
  const SetupResult result = RunStep(arguments);
  if (!report.empty()) Report(report, result.status.what);
  return static_cast<int>(result.outcome);
}

}  // namespace
}  // namespace kerno

int WINAPI wWinMain(HINSTANCE /*instance*/, HINSTANCE /*before*/, PWSTR /*command_line*/,
                    int /*show*/) {
  try {
    return kerno::Run();
  } catch (const std::exception&) {
    return static_cast<int>(kerno::SetupOutcome::kNotWritable);
  }
}
