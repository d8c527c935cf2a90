// The program without a command: its window.
#pragma once

#include "cli/command.h"

namespace kerno {

// Starts kerno-desktop, from beside this program or from PATH, where there is a display, and does
// not wait for its end.
ExitStatus StartDesktop();

}  // namespace kerno
