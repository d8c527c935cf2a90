// The services that a test may replace, the same on every system.
#include <utility>

#include "platform/clock.h"
#include "platform/system.h"

namespace kerno {
namespace {

// Null: the real ones.
Clock* clock_replacement = nullptr;
System* system_replacement = nullptr;

}  // namespace

Clock& CurrentClock() {
  return clock_replacement ? *clock_replacement : SystemClock();
}

Clock* ReplaceClock(Clock* clock) {
  return std::exchange(clock_replacement, clock);
}

System& CurrentSystem() {
  return system_replacement ? *system_replacement : RealSystem();
}

System* ReplaceSystem(System* system) {
  return std::exchange(system_replacement, system);
}

}  // namespace kerno
