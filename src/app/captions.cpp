#include "app/captions.h"

#include <algorithm>
#include <atomic>
#include <span>
#include <unordered_map>
#include <vector>

#include "app/captions_table.h"
#include "base/text.h"

namespace kerno {
namespace {

std::atomic<Language> current_language = Language::kEnglish;

const CaptionRow* FindRow(std::u16string_view english) {
  static const auto* const rows = [] {
    auto* map = new std::unordered_map<std::u16string_view, const CaptionRow*>;
    for (const auto table : {CaptionTexts(), CaptionReasons()}) {
      for (const CaptionRow& row : table) map->emplace(row.english, &row);
    }
    return map;
  }();
  const auto found = rows->find(english);
  return found == rows->end() ? nullptr : found->second;
}

std::u16string_view TextOf(const CaptionRow& row, Language language) {
  switch (language) {
    case Language::kJapanese:
      return row.japanese;
    case Language::kGerman:
      return row.german;
    default:
      return row.shown ? row.shown : row.english;
  }
}

// Puts parts in the place of "{}" or "{2}".
std::u16string Filled(std::u16string_view text, std::span<const std::u16string_view> parts) {
  std::u16string out;
  size_t next = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    const bool numbered = i + 2 < text.size() && text[i + 1] >= u'1' && text[i + 1] <= u'9';
    const size_t end = i + (numbered ? 2 : 1);
    if (text[i] != u'{' || end >= text.size() || text[end] != u'}') {
      out += text[i];
      continue;
    }
    const size_t part = numbered ? static_cast<size_t>(text[i + 1] - u'1') : next++;
    if (part < parts.size()) out += parts[part];
    i = end;
  }
  return out;
}

// Whether a text is a pattern with something in the place of each "{}".
bool Matches(std::u16string_view pattern, std::u16string_view text,
             std::vector<std::u16string_view>* parts) {
  parts->clear();
  size_t hole = pattern.find(u"{}");
  if (!text.starts_with(pattern.substr(0, hole))) return false;
  text.remove_prefix(hole);
  while (hole != pattern.npos) {
    pattern.remove_prefix(hole + 2);
    hole = pattern.find(u"{}");
    const std::u16string_view literal = pattern.substr(0, hole);
    const bool is_last = hole == pattern.npos;
    const bool is_found = !is_last || text.ends_with(literal);
    const size_t end = is_last ? text.size() - literal.size() : text.find(literal);
    if (!is_found || end == text.npos) return false;
    parts->push_back(text.substr(0, end));
    text.remove_prefix(end + literal.size());
    if (!is_last) pattern.remove_prefix(literal.size());
    hole = pattern.find(u"{}");
  }
  return std::ranges::none_of(*parts, &std::u16string_view::empty);
}

// The row whose pattern says most of a text, and what stands in its places.
const CaptionRow* FindPattern(std::span<const CaptionRow> rows, std::u16string_view text,
                              std::vector<std::u16string_view>* parts) {
  std::vector<std::u16string_view> found;
  const CaptionRow* best = nullptr;
  size_t most = 0;
  for (const CaptionRow& row : rows) {
    const std::u16string_view pattern = row.english;
    if (pattern.size() <= most || !Matches(pattern, text, &found)) continue;
    best = &row;
    most = pattern.size();
    *parts = found;
  }
  return best;
}

}  // namespace

Language CurrentLanguage() {
  return current_language;
}

void SetLanguage(Language language) {
  current_language = language;
}

Language LanguageOfLocale(std::u16string_view locale) {
  const std::u16string name = AsciiLower(locale.substr(0, locale.find_first_of(u"_-.@")));
  if (name == u"ja") return Language::kJapanese;
  return name == u"de" ? Language::kGerman : Language::kEnglish;
}

std::u16string SayIn(Language language, std::u16string_view english) {
  const CaptionRow* const row = FindRow(english);
  return std::u16string(row ? TextOf(*row, language) : english);
}

std::u16string Say(std::u16string_view english) {
  return SayIn(CurrentLanguage(), english);
}

std::u16string Say(std::u16string_view english, std::initializer_list<std::u16string_view> parts) {
  return Filled(Say(english), {parts.begin(), parts.size()});
}

std::u16string SayReason(std::u16string_view why) {
  if (FindRow(why)) return Say(why);
  std::vector<std::u16string_view> parts;
  const CaptionRow* const row = FindPattern(CaptionReasons(), why, &parts);
  if (!row) return std::u16string(why);
  // After a colon stands the reason for the reason.
  std::u16string inner;
  if (std::u16string_view(row->english).ends_with(u": {}")) {
    inner = SayReason(parts.back());
    parts.back() = inner;
  }
  return Filled(TextOf(*row, CurrentLanguage()), parts);
}

std::u16string SayStatus(const Status& status) {
  if (status.why.empty()) return SayReason(status.what);
  std::vector<std::u16string_view> parts;
  const CaptionRow* const subject = FindPattern(CaptionSubjects(), status.what, &parts);
  const std::u16string what =
      subject ? Filled(TextOf(*subject, CurrentLanguage()), parts) : status.what;
  return (what.empty() ? u"" : what + u": ") + SayReason(status.why);
}

std::u16string WithoutMnemonic(std::u16string_view caption) {
  std::u16string text(caption);
  const size_t mark = text.find(u'&');
  if (mark == std::u16string::npos) return text;
  const bool in_brackets =
      mark > 0 && text[mark - 1] == u'(' && mark + 2 < text.size() && text[mark + 2] == u')';
  return in_brackets ? text.erase(mark - 1, 4) : text.erase(mark, 1);
}

std::span<const char16_t* const> CaptionFaces(Language language) {
  static constexpr const char16_t* kJapanese[] = {u"Yu Gothic UI", u"Meiryo UI", u"MS UI Gothic"};
  static constexpr const char16_t* kLatin[] = {u"Segoe UI", u"Tahoma"};
  return language == Language::kJapanese ? std::span<const char16_t* const>(kJapanese)
                                         : std::span<const char16_t* const>(kLatin);
}

}  // namespace kerno
