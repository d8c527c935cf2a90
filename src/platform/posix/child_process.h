// Starting programs with their arguments as they are, never through a shell.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace kerno::posix {

// How an attempt to start a program went.
struct ChildResult {
  bool started = false;
  std::optional<int> exit_status;  // nothing: it still runs, or a signal ended it
};

// Starts the program on its own: in a session of its own, its standard streams closed to the
// caller's, nobody's child to wait for. Waits up to `patience` milliseconds for its end.
ChildResult StartDetached(const std::filesystem::path& program,
                          const std::vector<std::string>& arguments,
                          const std::filesystem::path& folder, int patience);

// Runs the program in the caller's terminal and waits for its end.
ChildResult RunInTerminal(const std::filesystem::path& program,
                          const std::vector<std::string>& arguments);

// Where PATH finds an executable file of this name; a name with a folder is only looked at itself.
// Empty when there is none.
std::filesystem::path FindExecutable(const std::filesystem::path& name);

}  // namespace kerno::posix
