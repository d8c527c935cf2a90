// Opening files with their programs, and finding programs.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "platform/shell.h"

namespace kerno {

struct LaunchRequest : ShellRequest {
  // Filled in by Launch: the shell's result, above 32 when it did what was asked.
  int result = 0;
};

// Asks the shell, and when it refuses starts the file as a program. False when both fail: the user
// is told why, in the shell's words, and once the user has answered the dump log gets a record.
bool Launch(LaunchRequest* request);

// The message for a shell result, the file and the parameters.
std::u16string LaunchMessage(const LaunchRequest& request);

// How the record names the button that the user pressed in a message box: 1 OK, 2 cancel, 3 abort,
// 4 retry, 5 ignore, 6 yes, 7 no.
// Classic: the fifth is misspelt, as in the records that exist.
std::u16string_view ButtonLabel(int button);

// The full path of an installed program by its file name: from the registry's App Paths, else from
// the folders of programs. Empty when there is none.
std::filesystem::path FindProgram(std::u16string_view name);

}  // namespace kerno
