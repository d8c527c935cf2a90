// What the desktop's shell does for a program: opening files with the programs that belong to them,
// and starting programs.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace kerno {

// How a window stands on the screen: how a started program is to show its own, where the system
// passes that on, and how the main window was last seen.
enum class WindowShow { kNormal, kMinimised, kMaximised };

struct ShellRequest {
  std::u16string verb = u"open";  // "open", "print", "explore", "edit", or "find" for a folder
  std::filesystem::path file;     // a file, a folder, or an address ("https://...")
  std::vector<std::u16string> parameters;
  std::filesystem::path folder;  // working folder; empty: the current one

  // Both without effect where the system's shell does not take them.
  void* owner = nullptr;  // native window under which the shell asks; null: the active one
  WindowShow show = WindowShow::kNormal;
};

class Shell {
 public:
  virtual ~Shell() = default;

  // Performs the verb. Above 32: done. Otherwise why not, in the shell's own numbers: 2 the file
  // and 3 its folder does not exist, 5 no access, 31 no program is associated, or the one that is
  // takes no parameters.
  virtual int Execute(const ShellRequest& request) = 0;

  // Starts the file as a program with the parameters in the working folder and does not wait for
  // its end. A name without a folder is looked for where the system looks for programs.
  virtual bool StartProcess(const ShellRequest& request) = 0;

  // Folders in which installed programs lie: first those that are searched by name alone, then
  // those in which every program has a folder of its own.
  virtual std::vector<std::filesystem::path> ProgramFolders() = 0;
  virtual std::vector<std::filesystem::path> ApplicationFolders() = 0;
};

// Whether the user has a display that a program's window comes to.
bool HasDisplay();

// The process's shell; a test may set its own. ReplaceShell returns the one before; null restores
// the real one. The caller keeps ownership.
Shell& CurrentShell();
Shell* ReplaceShell(Shell* shell);

}  // namespace kerno
