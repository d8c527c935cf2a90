#include "parts/ipx.h"

namespace kerno {

std::u16string ToText(const PartsA& container, std::u16string_view program) {
  ipx::Writer out;
  if (!ipx::Write(&out, container, program)) return {};
  return ipx::Unpack(out.text());
}

bool FromText(std::u16string_view text, PartsA* container) {
  const std::string packed = ipx::Pack(text);
  ipx::Lines lines(packed);
  return ipx::Read(&lines, container);
}

}  // namespace kerno
