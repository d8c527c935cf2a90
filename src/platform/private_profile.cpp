#include "platform/private_profile.h"

namespace kerno {

int32_t ParseProfileInt(std::u16string_view value) {
  const auto skip = [&] { value.remove_prefix(1); };
  while (!value.empty() && value.front() <= u' ') skip();
  const bool negative = !value.empty() && value.front() == u'-';
  if (negative || (!value.empty() && value.front() == u'+')) skip();
  uint32_t radix = 10;
  if (value.size() >= 2 && value[0] == u'0') {
    radix = value[1] == u'x' ? 16 : value[1] == u'o' ? 8 : value[1] == u'b' ? 2 : 10;
    if (radix != 10) value.remove_prefix(2);
  }
  uint32_t number = 0;
  for (const char16_t unit : value) {
    const uint32_t letter = unit | 0x20u;
    const uint32_t digit = unit >= u'0' && unit <= u'9'       ? unit - u'0'
                           : letter >= u'a' && letter <= u'f' ? letter - u'a' + 10
                                                              : radix;
    if (digit >= radix) break;
    number = number * radix + digit;
  }
  return static_cast<int32_t>(negative ? 0 - number : number);
}

}  // namespace kerno
