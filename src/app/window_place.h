// Keeping the window where it can be seen.
#pragma once

#include <span>

#include "app/dialog_view.h"

namespace kerno {

// The rectangle where enough of its title bar lies on one of the screens, shrunk to that screen;
// otherwise moved onto the first screen. An empty rectangle, or no screen, stays as it is.
WindowRect KeepInSight(const WindowRect& wanted, std::span<const WindowRect> screens);

// The rectangle, no larger than the first screen, in its middle. No screen: as it is.
WindowRect InTheMiddle(const WindowRect& wanted, std::span<const WindowRect> screens);

// The rectangle moved down and to the right by a title bar for each window that stands already, so
// that a new one covers none of their title bars. An empty rectangle stays as it is.
WindowRect StepAside(const WindowRect& wanted, int windows_before);

// The size of a first window's content on a screen with this room, which its frame needs, too.
struct ContentSize {
  int width, height;
};
ContentSize FirstSize(int room_width, int room_height);

}  // namespace kerno
