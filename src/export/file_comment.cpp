#include "export/file_comment.h"

#include <chrono>

#include "base/number_text.h"
#include "base/text.h"
#include "export/build_time.h"
#include "platform/clock.h"
#include "platform/system.h"

namespace kerno {
namespace {

std::string Padded(int value, size_t digits) {
  std::string text;
  AppendInteger(&text, value);
  return text.size() < digits ? std::string(digits - text.size(), '0') + text : text;
}

LocalTime UtcTime(int64_t seconds) {
  using namespace std::chrono;
  const sys_seconds time{std::chrono::seconds(seconds)};
  const year_month_day date(floor<days>(time));
  const hh_mm_ss clock(time - floor<days>(time));
  return {static_cast<int>(date.year()),
          static_cast<int>(static_cast<unsigned>(date.month())),
          static_cast<int>(static_cast<unsigned>(date.day())),
          static_cast<int>(clock.hours().count()),
          static_cast<int>(clock.minutes().count()),
          static_cast<int>(clock.seconds().count())};
}

}  // namespace

std::u16string FileComment(std::u16string_view exporter, std::optional<int64_t> moment) {
  const LocalTime now = moment ? UtcTime(*moment) : CurrentClock().Now();
  const std::string time = Padded(now.year, 4) + "/" + Padded(now.month, 2) + "/" +
                           Padded(now.day, 2) + " " + Padded(now.hour, 2) + ":" +
                           Padded(now.minute, 2) + ":" + Padded(now.second, 2);
  return std::u16string(exporter) + Utf8ToUtf16Lossy(BuildTime()) +  //
         u"\r\nEXE          \t    \t" + PathText(CurrentSystem().ProgramPath()) +
         u"\r\nTime         \t    \t" + Utf8ToUtf16Lossy(time) + u"\r\n";
}

}  // namespace kerno
