#include "app/face_names.h"

#include <algorithm>

#include "base/text.h"
#include "outline/scripts.h"
#include "platform/fold_case.h"

namespace kerno {
namespace {

// Hiragana of the half-width katakana U+FF66 to U+FF9D; "ー" has no hiragana.
constexpr std::u16string_view kNarrowKana =
    u"をぁぃぅぇぉゃゅょっーあいうえおかきくけこさしすせそたちつてとなにぬねのはひふへほまみむめも"
    u"やゆよ"
    u"らりるれろわん";
constexpr char16_t kNarrowVoiced = 0xFF9E, kNarrowHalfVoiced = 0xFF9F;

constexpr bool IsIn(std::u16string_view text, char16_t unit) {
  return text.find(unit) != text.npos;
}

constexpr bool IsAccent(char32_t ch) {
  return ch >= 0x0300 && ch <= 0x036F;
}

// The letter without its accents: Latin, Greek and Cyrillic ones. Letters with a stroke are of one
// piece to Unicode.
char16_t WithoutAccents(char16_t unit) {
  constexpr std::u16string_view kStroked = u"ØøŁłĐđĦħŦŧ", kPlain = u"OoLlDdHhTt";
  constexpr char16_t kPlainEnd = 0x80, kLettersEnd = 0x2000;
  if (unit < kPlainEnd || unit >= kLettersEnd) return unit;
  if (const size_t at = kStroked.find(unit); at != kStroked.npos) return kPlain[at];
  char32_t letter = unit, first = 0, accent = 0;
  while (Decompose(letter, &first, &accent) && IsAccent(accent)) letter = first;
  return static_cast<char16_t>(letter);
}

char16_t FoldedUnit(char16_t unit) {
  if (unit == 0x3000 || unit == 0x00A0 || unit == u'\t') return u' ';
  if (unit >= 0xFF01 && unit <= 0xFF5E) unit = static_cast<char16_t>(unit - 0xFEE0);
  if (unit >= 0x30A1 && unit <= 0x30F6) return static_cast<char16_t>(unit - 0x60);
  if (unit >= 0xFF66 && unit <= 0xFF9D) return kNarrowKana[unit - 0xFF66U];
  return FoldCase(WithoutAccents(unit));
}

// Puts a sound mark on the kana before, as half-width ones have it beside them.
bool JoinsSoundMark(char16_t unit, std::u16string* text) {
  if ((unit != kNarrowVoiced && unit != kNarrowHalfVoiced) || text->empty()) return false;
  char16_t& before = text->back();
  const bool half = unit == kNarrowHalfVoiced;
  if (!half && before == u'う') {
    before = u'ゔ';
  } else if (IsIn(u"はひふへほ", before)) {
    before = static_cast<char16_t>(before + (half ? 2 : 1));
  } else if (!half && IsIn(u"かきくけこさしすせそたちつてと", before)) {
    before = static_cast<char16_t>(before + 1);
  } else {
    return false;
  }
  return true;
}

bool IsLetter(char16_t unit) {
  return (unit >= u'a' && unit <= u'z') || (unit >= u'0' && unit <= u'9');
}

// Words also begin where Latin letters end: "IPA" and "明朝" of "IPA明朝".
bool StartsWord(std::u16string_view name, size_t at) {
  if (at == 0) return true;
  const char16_t before = name[at - 1];
  if (before < 0x80) return !IsLetter(before) || name[at] >= 0x80;
  return name[at] < 0x80;
}

constexpr int kStarts = 0, kWordStarts = 1, kHolds = 2, kNowhere = 3;

int RankIn(std::u16string_view name, std::u16string_view word) {
  int best = kNowhere;
  for (size_t at = name.find(word); at != name.npos; at = name.find(word, at + 1)) {
    const int rank = at == 0 ? kStarts : StartsWord(name, at) ? kWordStarts : kHolds;
    best = std::min(best, rank);
    if (best <= kWordStarts) break;
  }
  return best;
}

}  // namespace

std::u16string FoldedName(std::u16string_view name) {
  std::u16string folded;
  folded.reserve(name.size());
  for (const char16_t unit : name) {
    if (IsAccent(unit) || JoinsSoundMark(unit, &folded)) continue;
    const char16_t plain = FoldedUnit(unit);
    if (plain == u' ' && (folded.empty() || folded.back() == u' ')) continue;
    folded.push_back(plain);
  }
  if (folded.ends_with(u' ')) folded.pop_back();
  return folded;
}

std::optional<NameFind> FindName(const SearchNames& names, std::u16string_view folded_search) {
  NameFind found;
  bool all = true, first = true;
  for (size_t at = 0; all && at < folded_search.size();) {
    const size_t end = std::min(folded_search.find(u' ', at), folded_search.size());
    const std::u16string_view word = folded_search.substr(at, end - at);
    int best = kNowhere;
    for (size_t i = 0; i < names.names.size(); ++i) {
      const int rank = RankIn(names.names[i], word);
      if (rank < best && first) found.name = i;
      best = std::min(best, rank);
    }
    all = best != kNowhere;
    found.rank += best;
    first = false;
    at = end + 1;
  }
  if (all) return found;
  const bool full = std::ranges::any_of(names.full_names, [&](const std::u16string& name) {
    return name.starts_with(folded_search);
  });
  constexpr int kLast = 1000;
  if (full) return NameFind{kLast, 0};
  return std::nullopt;
}

}  // namespace kerno
