// What the desktop's shell does for a program: opening files with the programs that belong to them,
// and starting programs.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace kerno {

class Shell {
 public:
  virtual ~Shell() = default;

  // Performs a verb ("open", "print", "explore", "edit" or "find") on a file, a folder or an
  // address ("https://..."). Above 32: done. Otherwise why not, in the shell's own numbers: 2 the
  // file and 3 its folder does not exist, 5 no access, 31 no program is associated.
  virtual int Execute(std::u16string_view verb, const std::filesystem::path& file,
                      const std::vector<std::u16string>& parameters,
                      const std::filesystem::path& folder) = 0;

  // Starts a program with arguments in a working folder (the current one when empty) and does not
  // wait for its end. A name without a folder is looked for where the system looks for programs.
  virtual bool StartProcess(const std::filesystem::path& file,
                            const std::vector<std::u16string>& parameters,
                            const std::filesystem::path& folder) = 0;

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
