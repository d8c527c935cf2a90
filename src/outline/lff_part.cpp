#include "outline/lff_part.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <map>
#include <optional>

#include "outline/stroke_font_parts.h"

namespace kerno {
namespace {

// The code in "[0041] A", "[#0041]", or "C0041" after its letter.
std::optional<char32_t> CodeIn(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of("[#"), text.size()));
  uint32_t code = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), code, 16);
  if (error != std::errc() || end == text.data()) return std::nullopt;
  return code;
}

bool BeginsLine(std::string_view bytes, size_t at) {
  while (at > 0 && (bytes[at - 1] == ' ' || bytes[at - 1] == '\t')) --at;
  return at == 0 || bytes[at - 1] == '\n' || bytes[at - 1] == '\r';
}

// Where each character's entry begins and ends; of two the later one counts. `head` is what stands
// before all of them.
std::map<char32_t, std::string_view> EntriesOf(std::string_view bytes, std::string_view* head) {
  std::map<char32_t, std::string_view> entries;
  std::optional<char32_t> open;
  size_t start = 0;
  *head = bytes;
  const auto close = [&](size_t end) {
    if (open) {
      entries[*open] = bytes.substr(start, end - start);
    } else {
      *head = bytes.substr(0, end);
    }
  };
  for (size_t at = bytes.find('['); at != bytes.npos; at = bytes.find('[', at + 1)) {
    if (!BeginsLine(bytes, at)) continue;
    const auto code = CodeIn(bytes.substr(at, 16));
    if (!code) continue;
    close(at);
    open = code;
    start = at;
  }
  close(bytes.size());
  return entries;
}

}  // namespace

std::vector<char32_t> CharactersOfLff(std::string_view bytes) {
  std::string_view head;
  std::vector<char32_t> characters;
  for (const auto& [ch, entry] : EntriesOf(bytes, &head)) characters.push_back(ch);
  return characters;
}

std::string PartOfLff(std::string_view bytes, std::u32string_view characters) {
  std::string_view head;
  std::map<char32_t, std::string_view> entries = EntriesOf(bytes, &head);
  std::string part(head);
  std::u32string wanted(characters);
  while (!wanted.empty()) {
    const auto entry = entries.extract(wanted.back());
    wanted.pop_back();
    if (entry.empty()) continue;
    part.append(entry.mapped()).append("\n");
    for (std::string_view rest = entry.mapped(); !rest.empty();) {
      const std::string_view line = Trimmed(TakeLine(&rest));
      if (!line.starts_with('C')) continue;
      if (const auto other = CodeIn(line.substr(1))) wanted.push_back(*other);
    }
  }
  return part;
}

}  // namespace kerno
