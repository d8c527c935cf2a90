#include "app/window_place.h"

#include <algorithm>

namespace kerno {
namespace {

constexpr int32_t kGripWidth = 120;  // of the title bar, enough to drag the window by
constexpr int32_t kGripHeight = 24;
constexpr int32_t kAside = 32;
constexpr ContentSize kFirstSize = {980, 740};
constexpr ContentSize kFrameRoom = {16, 44};  // what frames need at most

int64_t Width(const WindowRect& r) {
  return static_cast<int64_t>(r.right) - r.left;
}
int64_t Height(const WindowRect& r) {
  return static_cast<int64_t>(r.bottom) - r.top;
}

bool CanBeGripped(const WindowRect& window, const WindowRect& screen) {
  const int64_t seen = static_cast<int64_t>(std::min(window.right, screen.right)) -
                       std::max(window.left, screen.left);
  return seen >= std::min<int64_t>(kGripWidth, Width(window)) && window.top >= screen.top &&
         static_cast<int64_t>(window.top) + kGripHeight <= screen.bottom;
}

WindowRect Sized(int32_t left, int32_t top, int64_t width, int64_t height) {
  return {left, top, static_cast<int32_t>(left + width), static_cast<int32_t>(top + height)};
}

}  // namespace

WindowRect KeepInSight(const WindowRect& wanted, std::span<const WindowRect> screens) {
  if (Width(wanted) <= 0 || Height(wanted) <= 0 || screens.empty()) return wanted;
  for (const WindowRect& screen : screens) {
    if (!CanBeGripped(wanted, screen)) continue;
    return Sized(wanted.left, wanted.top, std::min(Width(wanted), Width(screen)),
                 std::min(Height(wanted), Height(screen)));
  }
  return InTheMiddle(wanted, screens);
}

WindowRect InTheMiddle(const WindowRect& wanted, std::span<const WindowRect> screens) {
  if (screens.empty()) return wanted;
  const WindowRect& first = screens.front();
  const int64_t width = std::min(Width(wanted), Width(first));
  const int64_t height = std::min(Height(wanted), Height(first));
  return Sized(static_cast<int32_t>(first.left + (Width(first) - width) / 2),
               static_cast<int32_t>(first.top + (Height(first) - height) / 2), width, height);
}

WindowRect StepAside(const WindowRect& wanted, int windows_before) {
  if (wanted == WindowRect{}) return wanted;
  const int32_t by = kAside * windows_before;
  return {wanted.left + by, wanted.top + by, wanted.right + by, wanted.bottom + by};
}

ContentSize FirstSize(int room_width, int room_height) {
  return {std::min(kFirstSize.width, room_width - kFrameRoom.width),
          std::min(kFirstSize.height, room_height - kFrameRoom.height)};
}

}  // namespace kerno
