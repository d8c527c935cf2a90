#include "export/file_comment.h"

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

}  // namespace

std::u16string FileComment(std::u16string_view exporter) {
  const LocalTime now = CurrentClock().Now();
  const std::string time = Padded(now.year, 4) + "/" + Padded(now.month, 2) + "/" +
                           Padded(now.day, 2) + " " + Padded(now.hour, 2) + ":" +
                           Padded(now.minute, 2) + ":" + Padded(now.second, 2);
  return std::u16string(exporter) + Utf8ToUtf16Lossy(BuildTime()) +  //
         u"\r\nEXE          \t    \t" + PathText(CurrentSystem().ProgramPath()) +
         u"\r\nTime         \t    \t" + Utf8ToUtf16Lossy(time) + u"\r\n";
}

}  // namespace kerno
