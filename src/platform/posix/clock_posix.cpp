#include <ctime>

#include "platform/clock.h"

namespace kerno {
namespace {

constexpr int64_t kThousand = 1000;
constexpr int64_t kMillion = 1000000;

class PosixClock final : public Clock {
 public:
  int64_t Seconds() override { return static_cast<int64_t>(time(nullptr)); }

  LocalTime Local(int64_t seconds) override {
    const time_t moment = static_cast<time_t>(seconds);
    tm parts{};
    if (!localtime_r(&moment, &parts)) return {};
    return {parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday,
            parts.tm_hour,        parts.tm_min,     parts.tm_sec};
  }

  uint32_t Ticks() override {
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return static_cast<uint32_t>(now.tv_sec * kThousand + now.tv_nsec / kMillion);
  }

  void Sleep(uint32_t milliseconds) override {
    timespec rest{static_cast<time_t>(milliseconds / kThousand),
                  static_cast<long>((milliseconds % kThousand) * kMillion)};
    while (nanosleep(&rest, &rest) != 0) {
    }
  }
};

PosixClock system_clock;

}  // namespace

Clock& SystemClock() {
  return system_clock;
}

}  // namespace kerno
