#include <unistd.h>

#include "platform/console.h"

namespace kerno {

std::vector<std::string> ProgramArguments(int argc, char** argv) {
  return {argv, argv + argc};
}

// Streams of this system carry bytes already.
void PrepareStandardStreams() {}

bool IsErrorTerminal() {
  return isatty(STDERR_FILENO) != 0;
}

}  // namespace kerno
