#include "platform/style_choice.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

#include "platform/fold_case.h"

namespace kerno {
namespace {

constexpr std::u16string_view kItalic = u" italic", kBold = u" bold";

// Words that stand in any order in the names of styles; longer ones before their parts, bold and
// italic last.
constexpr std::array<std::u16string_view, 15> kWords = {
    u"extralight",     u"semilight",     u"semibold",      u"extrabold",    u"light",
    u"extracondensed", u"semicondensed", u"extraexpanded", u"semiexpanded", u"condensed",
    u"expanded",       u"medium",        u"black",         u"bold",         u"italic"};

void ReplaceAll(std::u16string* text, std::u16string_view from, std::u16string_view to) {
  for (size_t at = 0; (at = text->find(from, at)) != text->npos; at += to.size()) {
    text->replace(at, from.size(), to);
  }
}

// Takes a word out wherever it stands, and leaves a blank so that its neighbours make no other one.
bool TakeWord(std::u16string* text, std::u16string_view word) {
  const bool found = text->find(word) != text->npos;
  ReplaceAll(text, word, u" ");
  return found;
}

// What different spellings of a style have in common: lower case, one word of several that mean the
// same, "regular" only where nothing else stands, words that are known in one order.
std::u16string KeyOf(std::u16string_view style) {
  std::u16string rest;
  for (const char16_t unit : style) {
    if (unit != u' ' && unit != u'-') rest.push_back(FoldCase(unit));
  }
  constexpr std::array<std::pair<std::u16string_view, std::u16string_view>, 7> kSameWords = {
      {{u"oblique", u"italic"},
       {u"book", u"regular"},
       {u"roman", u"regular"},
       {u"normal", u"regular"},
       {u"demi", u"semi"},
       {u"ultra", u"extra"},
       {u"regular", u""}}};
  for (const auto& [word, same] : kSameWords) ReplaceAll(&rest, word, same);
  std::u16string words;
  for (const std::u16string_view word : kWords) {
    if (TakeWord(&rest, word)) words.append(u" ").append(word);
  }
  std::erase(rest, u' ');
  if (rest == u"semi") {
    rest.clear();
    words.insert(0, u" semibold");
  }
  return rest + words;
}

bool RemoveEnd(std::u16string* key, std::u16string_view end) {
  if (!key->ends_with(end)) return false;
  key->resize(key->size() - end.size());
  return true;
}

template <class Fits>
std::optional<size_t> Find(std::span<const StyledFace> faces, const Fits& fits) {
  const auto found = std::ranges::find_if(faces, fits);
  if (found == faces.end()) return std::nullopt;
  return static_cast<size_t>(found - faces.begin());
}

std::optional<size_t> WithName(std::span<const StyledFace> faces, std::u16string_view style) {
  return Find(faces, [&](const StyledFace& face) {
    return std::ranges::any_of(
        face.styles, [&](const std::u16string& name) { return EqualWithoutCase(name, style); });
  });
}

std::optional<size_t> WithKey(std::span<const StyledFace> faces, const std::u16string& key) {
  return Find(faces, [&](const StyledFace& face) {
    return std::ranges::any_of(face.styles,
                               [&](const std::u16string& name) { return KeyOf(name) == key; });
  });
}

// A face that is bold or slanted, or neither, whatever words it has for that.
std::optional<size_t> WithLook(std::span<const StyledFace> faces, bool bold, bool slanted) {
  constexpr int32_t kLeastBold = 650, kMostBold = 800, kMostNormal = 500;
  return Find(faces, [&](const StyledFace& face) {
    const bool weight_fits =
        bold ? face.weight >= kLeastBold && face.weight <= kMostBold : face.weight <= kMostNormal;
    return weight_fits && face.slanted == slanted && face.width == faces.front().width;
  });
}

}  // namespace

std::optional<StyleChoice> ChooseStyle(std::u16string_view wanted,
                                       std::span<const StyledFace> faces) {
  if (wanted.empty()) return StyleChoice{};
  if (const auto found = WithName(faces, wanted)) return StyleChoice{*found};
  std::u16string rest = KeyOf(wanted);
  if (const auto found = WithKey(faces, rest)) return StyleChoice{*found};
  const bool slanted = RemoveEnd(&rest, kItalic);
  const bool bold = RemoveEnd(&rest, kBold);
  // As it is; without the slant; without the weight; without either.
  const std::array<std::pair<bool, bool>, 4> looks = {
      {{bold, slanted}, {bold, false}, {false, slanted}, {false, false}}};
  for (const auto& [with_bold, with_slant] : looks) {
    std::u16string key = rest;
    if (with_bold) key += kBold;
    if (with_slant) key += kItalic;
    auto found = WithKey(faces, key);
    if (!found && rest.empty()) found = WithLook(faces, with_bold, with_slant);
    if (found) return StyleChoice{*found, bold && !with_bold, slanted && !with_slant};
  }
  return std::nullopt;
}

std::optional<StyleChoice> ChooseStyleOfFace(std::u16string_view own, std::u16string_view wanted,
                                             std::span<const StyledFace> faces) {
  const std::u16string own_key = KeyOf(own), wanted_key = KeyOf(wanted);
  if (own_key.empty() || wanted_key == own_key) return ChooseStyle(wanted, faces);
  if (wanted_key.empty()) return std::nullopt;
  const auto found = ChooseStyle(std::u16string(own).append(u" ").append(wanted), faces);
  if (found && (found->make_bold || found->make_slanted)) return std::nullopt;
  return found;
}

std::u16string StyleList(std::span<const StyledFace> faces) {
  std::u16string names;
  for (const StyledFace& face : faces) {
    if (face.styles.empty()) continue;
    const std::u16string quoted = u"\"" + face.styles.front() + u"\"";
    if (names.find(quoted) != names.npos) continue;
    names += (names.empty() ? u"" : u", ") + quoted;
  }
  return names;
}

}  // namespace kerno
