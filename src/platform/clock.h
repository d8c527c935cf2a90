// Time: the calendar of the user's place, the ticks since the system started, and waiting.
#pragma once

#include <cstdint>

namespace kerno {

// A moment in local time; month 1 to 12, day 1 to 31, second 0 to 60.
struct LocalTime {
  int year = 1970;
  int month = 1;
  int day = 1;
  int hour = 0;
  int minute = 0;
  int second = 0;
};

class Clock {
 public:
  virtual ~Clock() = default;

  // Seconds since 1970-01-01 00:00:00 UTC.
  virtual int64_t Seconds() = 0;

  // The local time of a moment given in such seconds; 1970-01-01 00:00:00 for one that the system's
  // calendar does not reach.
  virtual LocalTime Local(int64_t seconds) = 0;

  // Milliseconds since the system started; starts again at 0 after 2^32 of them.
  virtual uint32_t Ticks() = 0;

  virtual void Sleep(uint32_t milliseconds) = 0;

  LocalTime Now() { return Local(Seconds()); }
};

Clock& SystemClock();

// The process's clock: the system's until a test sets its own. ReplaceClock returns the one before;
// null stands for the system's. The caller keeps ownership.
Clock& CurrentClock();
Clock* ReplaceClock(Clock* clock);

}  // namespace kerno
