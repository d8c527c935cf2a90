// Keeping the window where it can be seen.
#pragma once

#include <span>

#include "app/dialog_view.h"

namespace kerno {

// The rectangle where enough of its title bar lies on one of the screens, shrunk to that screen;
// otherwise moved onto the first screen. An empty rectangle, or no screen, stays as it is.
WindowRect KeepInSight(const WindowRect& wanted, std::span<const WindowRect> screens);

}  // namespace kerno
