#include "base/source_date.h"

#include <charconv>
#include <string>

#include "base/text.h"
#include "platform/system.h"

namespace kerno {
namespace {

constexpr int64_t kLast = 253402300799;  // 9999-12-31 23:59:59

}  // namespace

Status ReadSourceDate(std::optional<int64_t>* seconds) {
  seconds->reset();
  const auto value = CurrentSystem().Environment(u"SOURCE_DATE_EPOCH");
  if (!value) return Status::Ok();
  const std::string digits = Utf16ToUtf8(*value);
  int64_t number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc() || end != digits.data() + digits.size() || number < 0 ||
      number > kLast) {
    return Status::Error(Failure::kOther, u"SOURCE_DATE_EPOCH",
                         u"\"" + *value + u"\" is not a number of seconds since 1970");
  }
  *seconds = number;
  return Status::Ok();
}

}  // namespace kerno
