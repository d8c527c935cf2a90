// Texts that the benchmarks set.
#pragma once

#include <string>

namespace kerno {

struct SampleText {
  const char* name;
  std::u16string face;
  std::u16string text;
};

inline SampleText LatinSample() {
  return {"latin", u"DejaVu Sans",
          u"Kerno 2026: Sphinx of black quartz, judge my vow & pack 8 boxes. "};
}

inline SampleText JapaneseSample() {
  return {"japanese", u"IPAMincho",
          u"いろはにほへと散りぬるを我が世誰ぞ常ならむ有為の奥山今日越えて浅き夢見じ酔ひもせず。龍"
          u"鬱響麗"};
}

// The text over and over, cut to a number of UTF-16 units.
inline std::u16string RepeatTo(const std::u16string& text, size_t units) {
  std::u16string repeated;
  while (repeated.size() < units) repeated += text;
  repeated.resize(units);
  return repeated;
}

}  // namespace kerno
