#include "platform/posix/ini_text.h"

#include <algorithm>

#include "platform/fold_case.h"

namespace kerno::posix {
namespace {

constexpr size_t kNone = std::u16string_view::npos;

bool IsBlank(char16_t unit) {
  return unit == u' ' || (unit >= u'\t' && unit <= u'\r');
}

std::u16string_view Trim(std::u16string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

// One pair of equal quotes around a value does not belong to it.
std::u16string_view WithoutQuotes(std::u16string_view value) {
  const bool quoted = value.size() >= 2 && value.front() == value.back() &&
                      (value.front() == u'"' || value.front() == u'\'');
  return quoted ? value.substr(1, value.size() - 2) : value;
}

// A line of the text: its content is [begin, end), the next line begins at `next`.
struct Line {
  size_t begin = 0;
  size_t end = 0;
  size_t next = 0;
};

bool NextLine(std::u16string_view text, Line* line) {
  if (line->next >= text.size()) return false;
  line->begin = line->next;
  line->end = text.find_first_of(u"\r\n", line->begin);
  if (line->end == kNone) {
    line->end = line->next = text.size();
  } else {
    const bool pair =
        text[line->end] == u'\r' && line->end + 1 < text.size() && text[line->end + 1] == u'\n';
    line->next = line->end + (pair ? 2 : 1);
  }
  return true;
}

// The name in a section line, which ends at the last "]"; nothing for any other line.
std::optional<std::u16string_view> SectionName(std::u16string_view content) {
  content = Trim(content);
  if (content.empty() || content.front() != u'[') return std::nullopt;
  const size_t end = content.rfind(u']');
  if (end == kNone) return std::nullopt;
  return Trim(content.substr(1, end - 1));
}

// The "=" after a key that holds `inside` of them itself.
size_t FindEquals(std::u16string_view content, size_t inside) {
  size_t equals = content.find(u'=');
  for (; equals != kNone && inside > 0; --inside) equals = content.find(u'=', equals + 1);
  return equals;
}

// Where a key stands, or where it would.
struct Place {
  bool has_section = false;
  bool has_key = false;
  Line line;         // of the key
  size_t value = 0;  // just after its "="
  size_t end = 0;    // of the section's last line that is not blank, line end included
};

Place FindPlace(std::u16string_view text, std::u16string_view section, std::u16string_view key) {
  Place place;
  section = Trim(section);
  key = Trim(key);
  const auto inside = static_cast<size_t>(std::count(key.begin(), key.end(), u'='));
  for (Line line; NextLine(text, &line);) {
    const std::u16string_view content = text.substr(line.begin, line.end - line.begin);
    if (const auto name = SectionName(content)) {
      if (place.has_section) break;
      place.has_section = EqualWithoutCase(*name, section);
      if (place.has_section) place.end = line.next;
      continue;
    }
    if (!place.has_section) continue;
    const std::u16string_view trimmed = Trim(content);
    if (!trimmed.empty()) place.end = line.next;
    const size_t equals = FindEquals(content, inside);
    if (trimmed.empty() || trimmed.front() == u';' || equals == kNone) continue;
    if (!EqualWithoutCase(Trim(content.substr(0, equals)), key)) continue;
    place.has_key = true;
    place.line = line;
    place.value = line.begin + equals + 1;
    break;
  }
  return place;
}

std::u16string_view LineEnd(std::u16string_view text) {
  Line first;
  if (!NextLine(text, &first) || first.next == first.end) return u"\r\n";
  return text.substr(first.end, first.next - first.end);
}

bool EndsWithLine(std::u16string_view text, size_t at) {
  return at == 0 || text[at - 1] == u'\n' || text[at - 1] == u'\r';
}

}  // namespace

std::optional<std::u16string_view> FindIniValue(std::u16string_view text,
                                                std::u16string_view section,
                                                std::u16string_view key) {
  const Place place = FindPlace(text, section, key);
  if (!place.has_key) return std::nullopt;
  return WithoutQuotes(Trim(text.substr(place.value, place.line.end - place.value)));
}

void SetIniValue(std::u16string* text, std::u16string_view section, std::u16string_view key,
                 std::u16string_view value) {
  const Place place = FindPlace(*text, section, key);
  if (place.has_key) {
    text->replace(place.value, place.line.end - place.value, value);
    return;
  }
  const std::u16string line_end(LineEnd(*text));
  const size_t at = place.has_section ? place.end : text->size();
  std::u16string added = EndsWithLine(*text, at) ? u"" : line_end;
  if (!place.has_section) added.append(u"[").append(Trim(section)).append(u"]").append(line_end);
  added.append(Trim(key)).append(u"=").append(value).append(line_end);
  text->insert(at, added);
}

void RemoveIniValue(std::u16string* text, std::u16string_view section, std::u16string_view key) {
  const Place place = FindPlace(*text, section, key);
  if (place.has_key) text->erase(place.line.begin, place.line.next - place.line.begin);
}

}  // namespace kerno::posix
