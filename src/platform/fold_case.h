// Comparing names without case, as the system's settings do: no locale takes part.
#pragma once

#include <algorithm>
#include <string_view>

namespace kerno {

// The lower-case form of the letters of ASCII, Latin-1, Greek, Cyrillic and the full-width forms;
// every other unit as it is.
constexpr char16_t FoldCase(char16_t unit) {
  const auto between = [unit](char16_t first, char16_t last) {
    return unit >= first && unit <= last;
  };
  const auto lower = [unit](int by) { return static_cast<char16_t>(unit + by); };
  if (unit < 0x80) return between(u'A', u'Z') ? lower(0x20) : unit;
  if (between(0x00C0, 0x00DE) && unit != 0x00D7) return lower(0x20);
  if (between(0x0391, 0x03A9) && unit != 0x03A2) return lower(0x20);
  if (between(0x0410, 0x042F)) return lower(0x20);
  if (between(0x0400, 0x040F)) return lower(0x50);
  if (between(0xFF21, 0xFF3A)) return lower(0x20);
  return unit;
}

constexpr bool EqualWithoutCase(std::u16string_view a, std::u16string_view b) {
  return a.size() == b.size() &&
         std::equal(a.begin(), a.end(), b.begin(),
                    [](char16_t x, char16_t y) { return x == y || FoldCase(x) == FoldCase(y); });
}

}  // namespace kerno
