#include "export/svg_numbers.h"

#include <optional>

#include "base/number_text.h"
#include "base/settings_table.h"
#include "platform/clock.h"

namespace kerno {
namespace {

constexpr uint32_t kReadAgain = 11000;  // milliseconds

struct ReadPrecision {
  int digits;
  uint32_t ticks;
};
thread_local std::optional<ReadPrecision> read_precision;

}  // namespace

int SvgPrecision() {
  const uint32_t now = CurrentClock().Ticks();
  if (!read_precision || now - read_precision->ticks >= kReadAgain) {
    read_precision = {Get(kSvgPrecision), now};
  }
  return read_precision->digits;
}

void ResetSvgPrecision() {
  read_precision.reset();
}

void AppendSvgNumber(std::string* out, double value, int digits) {
  AppendNumberText(out, value, digits);
  if (out->back() == '.') out->pop_back();
}

std::u16string SvgNumberText(double value, int digits) {
  std::string text;
  AppendSvgNumber(&text, value, digits);
  return {text.begin(), text.end()};
}

std::string SvgColor(Color color) {
  constexpr char kHex[] = "0123456789abcdef";
  std::string text = "#";
  for (const int channel : {Red(color), Green(color), Blue(color)}) {
    text.push_back(kHex[channel / 16]);
    text.push_back(kHex[channel % 16]);
  }
  return text;
}

}  // namespace kerno
