#include "platform/clock.h"
#include "platform/win32/windows_api.h"

namespace kerno {
namespace {

// File times count steps of 100 ns from 1601 on.
constexpr int64_t kStepsPerSecond = 10000000;
constexpr int64_t kSecondsTo1970 = 11644473600;

class WindowsClock final : public Clock {
 public:
  int64_t Seconds() override {
    FILETIME now{};
    GetSystemTimeAsFileTime(&now);
    const uint64_t steps = uint64_t{now.dwHighDateTime} << 32 | now.dwLowDateTime;
    return static_cast<int64_t>(steps / kStepsPerSecond) - kSecondsTo1970;
  }

  LocalTime Local(int64_t seconds) override {
    const auto steps = static_cast<uint64_t>((seconds + kSecondsTo1970) * kStepsPerSecond);
    const FILETIME moment = {static_cast<DWORD>(steps), static_cast<DWORD>(steps >> 32)};
    SYSTEMTIME utc{};
    SYSTEMTIME local{};
    if (!FileTimeToSystemTime(&moment, &utc) ||
        !SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local)) {
      return {};
    }
    return {local.wYear, local.wMonth, local.wDay, local.wHour, local.wMinute, local.wSecond};
  }

  uint32_t Ticks() override { return GetTickCount(); }

  void Sleep(uint32_t milliseconds) override { ::Sleep(milliseconds); }
};

WindowsClock system_clock;

}  // namespace

Clock& SystemClock() {
  return system_clock;
}

}  // namespace kerno
