#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <sstream>
#include <string>

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

class PosixShell final : public Shell {
 public:
  int Execute(std::u16string_view verb, const fs::path& file,
              const std::vector<std::u16string>& parameters, const fs::path& folder) override;
  bool StartProcess(const fs::path& file, const std::vector<std::u16string>& parameters,
                    const fs::path& folder) override;

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
  static int RunXdgOpen(const std::string& target, const fs::path& folder);
  static bool RunEditor(const std::string& target, const fs::path& folder);
  static int RunPrinter(const std::string& target, const fs::path& folder);
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

bool PosixShell::RunEditor(const std::string& target, const fs::path& folder) {
  for (const char* variable : {"VISUAL", "EDITOR"}) {
    std::vector<std::string> words = Words(std::getenv(variable));
    const fs::path program = words.empty() ? fs::path() : posix::FindExecutable(words[0]);
    if (program.empty()) continue;
    words.erase(words.begin());
    words.push_back(target);
    // An editor may want the terminal for itself.
    const bool terminal = isatty(STDIN_FILENO) && isatty(STDOUT_FILENO);
    const posix::ChildResult result = terminal
                                          ? posix::RunInTerminal(program, words)
                                          : posix::StartDetached(program, words, folder, kPatience);
    if (result.started && result.exit_status.value_or(0) == 0) return true;
  }
  return false;
}

int PosixShell::RunPrinter(const std::string& target, const fs::path& folder) {
  const fs::path program = posix::FindExecutable("lp");
  if (program.empty()) return kNoAssociation;
  const posix::ChildResult result =
      posix::StartDetached(program, {"--", target}, folder, kPatience);
  return result.started && result.exit_status.value_or(0) == 0 ? kDone : kNoAssociation;
}

int PosixShell::Execute(std::u16string_view verb, const fs::path& file,
                        const std::vector<std::u16string>&, const fs::path& folder) {
  std::string target = file.native();
  if (!IsAddress(target)) {
    const fs::path whole = folder.empty() || file.is_absolute() ? file : folder / file;
    if (const int refused = TestAccess(whole)) return refused;
    std::error_code error;
    target = fs::absolute(whole, error).native();  // no name looks like an option
  }
  if (verb == u"print") return RunPrinter(target, folder);
  if (verb == u"edit" && RunEditor(target, folder)) return kDone;
  if (verb == u"edit" || verb == u"open" || verb == u"explore" || verb == u"find") {
    return RunXdgOpen(target, folder);
  }
  return kNoAssociation;
}

bool PosixShell::StartProcess(const fs::path& file, const std::vector<std::u16string>& parameters,
                              const fs::path& folder) {
  constexpr int kStartPatience = 100;  // long enough to learn that it did not start
  const fs::path whole =
      file.has_parent_path() && file.is_relative() && !folder.empty() ? folder / file : file;
  const fs::path program = posix::FindExecutable(whole);
  if (program.empty()) return false;
  std::vector<std::string> arguments;
  arguments.reserve(parameters.size());
  for (const std::u16string& parameter : parameters)
    arguments.push_back(ToFontconfigText(parameter));
  std::error_code error;
  return posix::StartDetached(fs::absolute(program, error), arguments, folder, kStartPatience)
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
