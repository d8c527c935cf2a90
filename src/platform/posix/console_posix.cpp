#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "platform/console.h"

namespace kerno {

std::vector<std::string> ProgramArguments(int argc, char** argv) {
  return {argv, argv + argc};
}

// Streams of this system carry bytes already. A closed one would give its number to the next file
// that is opened, and messages would land there. It gets the null device, the wrong way round, so
// that what is asked of it still fails; but messages that nobody wants to see may go.
void PrepareStandardStreams() {
  constexpr int kModes[] = {O_WRONLY, O_RDONLY, O_WRONLY};
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    if (fcntl(stream, F_GETFD) >= 0 || errno != EBADF) continue;
    open("/dev/null", kModes[stream]);  // takes the lowest free number: this one
  }
}

bool IsErrorTerminal() {
  return isatty(STDERR_FILENO) != 0;
}

bool IsOutputTerminal() {
  return isatty(STDOUT_FILENO) != 0;
}

}  // namespace kerno
