#include "outline/xml_tags.h"

#include <algorithm>
#include <charconv>

#include "base/text.h"

namespace kerno {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kAfterName = " \t\r\n=/>\"'<";

std::optional<char32_t> CharacterOf(std::string_view reference) {
  constexpr std::pair<std::string_view, char32_t> kNamed[] = {
      {"amp", U'&'}, {"lt", U'<'}, {"gt", U'>'}, {"quot", U'"'}, {"apos", U'\''}};
  for (const auto& [name, character] : kNamed) {
    if (reference == name) return character;
  }
  if (!reference.starts_with('#')) return std::nullopt;
  reference.remove_prefix(1);
  const bool hex = reference.starts_with('x') || reference.starts_with('X');
  if (hex) reference.remove_prefix(1);
  uint32_t code = 0;
  const char* last = reference.data() + reference.size();
  const auto [end, error] = std::from_chars(reference.data(), last, code, hex ? 16 : 10);
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  if (error != std::errc() || end != last || code == 0 || code > 0x10FFFF || surrogate) {
    return std::nullopt;
  }
  return code;
}

}  // namespace

std::optional<std::string_view> XmlTag::Attribute(std::string_view wanted) const {
  for (const auto& [attribute, value] : attributes) {
    if (attribute == wanted) return value;
  }
  return std::nullopt;
}

void XmlTags::MoveTo(size_t at) {
  const auto begin = text_.begin() + static_cast<std::ptrdiff_t>(at_);
  const auto end = text_.begin() + static_cast<std::ptrdiff_t>(at);
  line_ += static_cast<size_t>(std::count(begin, end, '\n'));
  at_ = at;
}

// Passes over what begins with `start` here, up to its end; true when that begins here.
bool XmlTags::Skip(std::string_view start, std::string_view end) {
  if (!text_.substr(at_).starts_with(start)) return false;
  const size_t found = text_.find(end, at_ + start.size());
  MoveTo(found == text_.npos ? text_.size() : found + end.size());
  return true;
}

// "<!DOCTYPE ... [ ... ]>"
bool XmlTags::SkipDeclaration() {
  if (!text_.substr(at_).starts_with("<!")) return false;
  bool inside = false;
  size_t end = at_;
  for (; end < text_.size() && (inside || text_[end] != '>'); ++end) {
    if (text_[end] == '[') inside = true;
    if (text_[end] == ']') inside = false;
  }
  MoveTo(std::min(end + 1, text_.size()));
  return true;
}

void XmlTags::SkipBlanks() {
  MoveTo(std::min(text_.find_first_not_of(kBlanks, at_), text_.size()));
}

std::string_view XmlTags::ReadName() {
  const size_t end = std::min(text_.find_first_of(kAfterName, at_), text_.size());
  const std::string_view name = text_.substr(at_, end - at_);
  at_ = end;
  return name;
}

bool XmlTags::ReadAttributes(XmlTag* tag) {
  for (;;) {
    SkipBlanks();
    if (at_ >= text_.size()) return false;
    if (text_[at_] == '>') break;
    if (text_[at_] == '/') {
      tag->ends = true;
      ++at_;
      continue;
    }
    const std::string_view name = ReadName();
    SkipBlanks();
    if (name.empty() || at_ >= text_.size() || text_[at_] != '=') return false;
    ++at_;
    SkipBlanks();
    const char quote = at_ < text_.size() ? text_[at_] : '\0';
    if (quote != '"' && quote != '\'') return false;
    const size_t end = text_.find(quote, at_ + 1);
    if (end == text_.npos) return false;
    tag->attributes.emplace_back(name, text_.substr(at_ + 1, end - at_ - 1));
    MoveTo(end + 1);
  }
  ++at_;
  return true;
}

bool XmlTags::Next(XmlTag* tag) {
  *tag = {};
  for (;;) {
    MoveTo(std::min(text_.find('<', at_), text_.size()));
    tag->line = line_;
    if (at_ >= text_.size()) return true;
    if (Skip("<!--", "-->") || Skip("<?", "?>") || Skip("<![CDATA[", "]]>") || SkipDeclaration()) {
      continue;
    }
    break;
  }
  ++at_;
  tag->ends = at_ < text_.size() && text_[at_] == '/';
  tag->begins = !tag->ends;
  if (tag->ends) ++at_;
  std::string_view name = ReadName();
  if (name.empty()) return false;
  name.remove_prefix(name.find(':') + 1);  // the whole name where there is no prefix
  tag->name = name;
  return ReadAttributes(tag) && !name.empty();
}

std::string XmlText(std::string_view raw) {
  std::string text;
  for (size_t at = 0; at < raw.size();) {
    const size_t end = raw[at] == '&' ? raw.find(';', at) : raw.npos;
    const auto character =
        end == raw.npos ? std::nullopt : CharacterOf(raw.substr(at + 1, end - at - 1));
    if (!character) {
      text.push_back(raw[at++]);
      continue;
    }
    std::u16string units;
    AppendCharacter(&units, *character);
    text += Utf16ToUtf8(units);
    at = end + 1;
  }
  return text;
}

}  // namespace kerno
