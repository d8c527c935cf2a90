#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <sstream>
#include <string>
#include <utility>

#include "platform/posix/child_process.h"
#include "platform/posix/unicode.h"
#include "platform/shell.h"
#include "platform/system.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

constexpr int kDone = 33;
constexpr int kFileNotFound = 2;
constexpr int kPathNotFound = 3;
constexpr int kAccessDenied = 5;
constexpr int kNoAssociation = 31;
constexpr int kPatience = 2000;  // milliseconds after which a program that still runs has succeeded

// Exit statuses of xdg-open.
constexpr int kXdgFileMissing = 2;
constexpr int kXdgToolMissing = 3;
constexpr int kXdgActionFailed = 4;

// "scheme:": something that no file system holds.
bool IsAddress(const std::string& text) {
  const size_t end = text.find("://");
  if (end == std::string::npos || end == 0) return false;
  return text.find_first_not_of(
             "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789+.-") == end;
}

// 0, or why the file cannot be opened.
int TestAccess(const fs::path& file) {
  struct stat info {};
  if (stat(file.c_str(), &info) != 0) {
    if (errno == EACCES) return kAccessDenied;
    const fs::path folder = file.has_parent_path() ? file.parent_path() : fs::path(".");
    return stat(folder.c_str(), &info) == 0 && S_ISDIR(info.st_mode) ? kFileNotFound
                                                                     : kPathNotFound;
  }
  return faccessat(AT_FDCWD, file.c_str(), R_OK, AT_EACCESS) == 0 ? 0 : kAccessDenied;
}

// The words of a command as the environment holds it; no shell takes part.
std::vector<std::string> Words(const char* text) {
  std::vector<std::string> words;
  std::istringstream stream(text ? text : "");
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

std::vector<std::string> Arguments(const ShellRequest& request) {
  std::vector<std::string> arguments;
  for (const std::u16string& parameter : request.parameters) {
    arguments.push_back(ToFontconfigText(parameter));
  }
  return arguments;
}

class PosixShell final : public Shell {
 public:
  int Execute(const ShellRequest& request) override;
  bool StartProcess(const ShellRequest& request) override;

  std::vector<fs::path> ProgramFolders() override {
    std::vector<fs::path> folders;
    const char* const path = std::getenv("PATH");
    std::istringstream stream(path ? path : "");
    for (std::string folder; std::getline(stream, folder, ':');) {
      if (fs::path(folder).is_absolute()) folders.emplace_back(folder);
    }
    const fs::path home =
        CurrentSystem().SpecialFolder(SpecialFolderId::kProfile, MissingFolder::kLeave);
    if (!home.empty()) folders.push_back(home / ".local/bin");
    for (const char* folder : {"/usr/local/bin", "/usr/bin", "/bin", "/usr/games", "/snap/bin",
                               "/var/lib/flatpak/exports/bin"}) {
      folders.emplace_back(folder);
    }
    return folders;
  }

  std::vector<fs::path> ApplicationFolders() override {
    return {"/opt", "/usr/lib", "/usr/libexec"};
  }

 private:
  // Each acts on the target instead of the request's file.
  static int RunXdgOpen(const std::string& target, const fs::path& folder);
  static bool RunEditor(const std::string& target, const ShellRequest& request);
  static int RunPrinter(const std::string& target, const ShellRequest& request);
};

int PosixShell::RunXdgOpen(const std::string& target, const fs::path& folder) {
  const fs::path program = posix::FindExecutable("xdg-open");
  if (program.empty()) return kNoAssociation;
  const posix::ChildResult result = posix::StartDetached(program, {target}, folder, kPatience);
  if (!result.started) return kNoAssociation;
  switch (result.exit_status.value_or(0)) {
    case 0:
      return kDone;
    case kXdgFileMissing:
      return kFileNotFound;
    case kXdgToolMissing:
    case kXdgActionFailed:
      return kNoAssociation;
    default:
      return *result.exit_status <= 32 ? *result.exit_status : kNoAssociation;
  }
}

bool PosixShell::RunEditor(const std::string& target, const ShellRequest& request) {
  for (const char* variable : {"VISUAL", "EDITOR"}) {
    std::vector<std::string> words = Words(std::getenv(variable));
    const fs::path program = words.empty() ? fs::path() : posix::FindExecutable(words[0]);
    if (program.empty()) continue;
    words.erase(words.begin());
    for (std::string& argument : Arguments(request)) words.push_back(std::move(argument));
    words.push_back(target);
    // An editor may want the terminal for itself.
    const bool terminal = isatty(STDIN_FILENO) && isatty(STDOUT_FILENO);
    const posix::ChildResult result =
        terminal ? posix::RunInTerminal(program, words)
                 : posix::StartDetached(program, words, request.folder, kPatience);
    if (result.started && result.exit_status.value_or(0) == 0) return true;
  }
  return false;
}

int PosixShell::RunPrinter(const std::string& target, const ShellRequest& request) {
  const fs::path program = posix::FindExecutable("lp");
  if (program.empty()) return kNoAssociation;
  std::vector<std::string> words = Arguments(request);
  words.insert(words.end(), {"--", target});
  const posix::ChildResult result = posix::StartDetached(program, words, request.folder, kPatience);
  return result.started && result.exit_status.value_or(0) == 0 ? kDone : kNoAssociation;
}

int PosixShell::Execute(const ShellRequest& request) {
  const auto& [verb, file, parameters, folder, owner, show] = request;
  std::string target = file.native();
  if (!IsAddress(target)) {
    const fs::path whole = folder.empty() || file.is_absolute() ? file : folder / file;
    if (const int refused = TestAccess(whole)) return refused;
    std::error_code error;
    target = fs::absolute(whole, error).native();  // no name looks like an option
  }
  if (verb == u"print") return RunPrinter(target, request);
  if (verb == u"edit" && RunEditor(target, request)) return kDone;
  const bool opens = verb == u"edit" || verb == u"open" || verb == u"explore" || verb == u"find";
  // The desktop's opener takes no parameters; dropping them would be another request.
  return opens && parameters.empty() ? RunXdgOpen(target, folder) : kNoAssociation;
}

bool PosixShell::StartProcess(const ShellRequest& request) {
  constexpr int kStartPatience = 100;  // long enough to learn that it did not start
  const fs::path& file = request.file;
  const bool in_folder = file.has_parent_path() && file.is_relative() && !request.folder.empty();
  const fs::path program = posix::FindExecutable(in_folder ? request.folder / file : file);
  if (program.empty()) return false;
  std::error_code error;
  return posix::StartDetached(fs::absolute(program, error), Arguments(request), request.folder,
                              kStartPatience)
      .started;
}

PosixShell posix_shell;
Shell* current = &posix_shell;

}  // namespace

bool HasDisplay() {
  for (const char16_t* variable : {u"DISPLAY", u"WAYLAND_DISPLAY"}) {
    const auto value = CurrentSystem().Environment(variable);
    if (value && !value->empty()) return true;
  }
  return false;
}

Shell& CurrentShell() {
  return *current;
}

Shell* ReplaceShell(Shell* shell) {
  Shell* before = current;
  current = shell ? shell : &posix_shell;
  return before;
}

}  // namespace kerno
