// A clock that stands still until it is told or slept on, in UTC.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

#include "platform/clock.h"
#include "support/installed.h"

namespace kerno::test {

// The process's clock while it lives.
class FakeClock final : public Installed<Clock, ReplaceClock> {
 public:
  int64_t seconds = 1795251600;  // 2026-11-21 09:00:00
  uint32_t ticks = 1000;
  uint32_t tick_step = 0;  // how far the ticks go on at each reading
  int sleeps = 0;
  uint64_t slept = 0;              // milliseconds
  std::function<void()> on_sleep;  // what happens elsewhere meanwhile

  int64_t Seconds() override { return seconds; }
  LocalTime Local(int64_t moment) override {
    using namespace std::chrono;
    const sys_seconds time{std::chrono::seconds(moment)};
    const year_month_day date(floor<days>(time));
    const hh_mm_ss clock(time - floor<days>(time));
    return {static_cast<int>(date.year()),
            static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(static_cast<unsigned>(date.day())),
            static_cast<int>(clock.hours().count()),
            static_cast<int>(clock.minutes().count()),
            static_cast<int>(clock.seconds().count())};
  }
  uint32_t Ticks() override { return ticks += tick_step; }
  void Sleep(uint32_t milliseconds) override {
    ++sleeps;
    slept += milliseconds;
    ticks += milliseconds;
    if (on_sleep) on_sleep();
  }
};

}  // namespace kerno::test
