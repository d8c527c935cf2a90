#include "export/dxf_lines.h"

#include "base/number_text.h"
#include "export/fixed_number.h"

namespace kerno {

void DxfLines::Pair(std::string_view code, std::string_view value) {
  text_.append(code).append("\n").append(value).append("\n");
}

void DxfLines::Integer(std::string_view code, int64_t value) {
  text_.append(code).append("\n");
  AppendInteger(&text_, value);
  text_.push_back('\n');
}

void DxfLines::Number(std::string_view code, double value, int decimals) {
  text_.append(code).append("\n");
  AppendFixed(&text_, value, decimals);
  text_.push_back('\n');
}

void DxfLines::Point(const P2& p, int decimals) {
  Number(" 10", p.x, decimals);
  Number(" 20", p.y, decimals);
}

std::string DxfHex(uint64_t value) {
  std::string text;
  do {
    text.insert(text.begin(), "0123456789ABCDEF"[value % 16]);
    value /= 16;
  } while (value > 0);
  return text;
}

}  // namespace kerno
