#include "outline/scripts.h"

#include <hb.h>

#include <algorithm>
#include <array>

#include "base/text.h"

namespace kerno {
namespace {

enum class Behaviour : uint8_t { kPlain, kJoins, kReorders };

struct ScriptRow {
  Script script;
  const char* name;
  Behaviour behaviour;
};

// Scripts whose letters do not stand side by side as they are. Their direction is not told here.
constexpr auto kScripts = std::to_array<ScriptRow>({
    {ScriptCode("Arab"), "Arabic", Behaviour::kJoins},
    {ScriptCode("Hebr"), "Hebrew", Behaviour::kPlain},
    {ScriptCode("Syrc"), "Syriac", Behaviour::kJoins},
    {ScriptCode("Thaa"), "Thaana", Behaviour::kPlain},
    {ScriptCode("Nkoo"), "N'Ko", Behaviour::kJoins},
    {ScriptCode("Mand"), "Mandaic", Behaviour::kJoins},
    {ScriptCode("Samr"), "Samaritan", Behaviour::kPlain},
    {ScriptCode("Adlm"), "Adlam", Behaviour::kJoins},
    {ScriptCode("Rohg"), "Hanifi Rohingya", Behaviour::kJoins},
    {ScriptCode("Mani"), "Manichaean", Behaviour::kJoins},
    {ScriptCode("Phlp"), "Psalter Pahlavi", Behaviour::kJoins},
    {ScriptCode("Sogd"), "Sogdian", Behaviour::kJoins},
    {ScriptCode("Chrs"), "Chorasmian", Behaviour::kJoins},
    {ScriptCode("Ougr"), "Old Uyghur", Behaviour::kJoins},
    {ScriptCode("Mong"), "Mongolian", Behaviour::kJoins},
    {ScriptCode("Phag"), "Phags-pa", Behaviour::kJoins},
    {ScriptCode("Deva"), "Devanagari", Behaviour::kReorders},
    {ScriptCode("Beng"), "Bengali", Behaviour::kReorders},
    {ScriptCode("Guru"), "Gurmukhi", Behaviour::kReorders},
    {ScriptCode("Gujr"), "Gujarati", Behaviour::kReorders},
    {ScriptCode("Orya"), "Oriya", Behaviour::kReorders},
    {ScriptCode("Taml"), "Tamil", Behaviour::kReorders},
    {ScriptCode("Telu"), "Telugu", Behaviour::kReorders},
    {ScriptCode("Knda"), "Kannada", Behaviour::kReorders},
    {ScriptCode("Mlym"), "Malayalam", Behaviour::kReorders},
    {ScriptCode("Sinh"), "Sinhala", Behaviour::kReorders},
    {ScriptCode("Khmr"), "Khmer", Behaviour::kReorders},
    {ScriptCode("Mymr"), "Myanmar", Behaviour::kReorders},
    {ScriptCode("Tibt"), "Tibetan", Behaviour::kReorders},
    {ScriptCode("Java"), "Javanese", Behaviour::kReorders},
    {ScriptCode("Bali"), "Balinese", Behaviour::kReorders},
    {ScriptCode("Sund"), "Sundanese", Behaviour::kReorders},
    {ScriptCode("Lana"), "Tai Tham", Behaviour::kReorders},
    {ScriptCode("Cham"), "Cham", Behaviour::kReorders},
    {ScriptCode("Thai"), "Thai", Behaviour::kPlain},
    {ScriptCode("Laoo"), "Lao", Behaviour::kPlain},
    {ScriptCode("Latn"), "Latin", Behaviour::kPlain},
    {ScriptCode("Grek"), "Greek", Behaviour::kPlain},
    {ScriptCode("Cyrl"), "Cyrillic", Behaviour::kPlain},
    {ScriptCode("Hani"), "Han", Behaviour::kPlain},
    {ScriptCode("Hira"), "Hiragana", Behaviour::kPlain},
    {ScriptCode("Kana"), "Katakana", Behaviour::kPlain},
});

const ScriptRow* RowOf(Script script) {
  const auto* row = std::ranges::find(kScripts, script, &ScriptRow::script);
  return row != kScripts.end() ? row : nullptr;
}

std::string NameOf(Script script) {
  if (const ScriptRow* row = RowOf(script)) return row->name;
  if (script == kCommonScript) return {};
  std::string code;
  for (int shift = 24; shift >= 0; shift -= 8) code.push_back(static_cast<char>(script >> shift));
  return code;
}

hb_unicode_general_category_t CategoryOf(char32_t ch) {
  return hb_unicode_general_category(hb_unicode_funcs_get_default(), ch);
}

bool IsMark(char32_t ch) {
  switch (CategoryOf(ch)) {
    case HB_UNICODE_GENERAL_CATEGORY_NON_SPACING_MARK:
    case HB_UNICODE_GENERAL_CATEGORY_SPACING_MARK:
    case HB_UNICODE_GENERAL_CATEGORY_ENCLOSING_MARK:
      return true;
    default:
      return false;
  }
}

bool IsVariationSelector(char32_t ch) {
  return (ch >= 0xFE00 && ch <= 0xFE0F) || (ch >= 0xE0100 && ch <= 0xE01EF);
}

ScriptNeeds NeedsOf(Script script) {
  const ScriptRow* row = RowOf(script);
  const hb_script_t tag = hb_script_from_iso15924_tag(script);
  return {.script = script,
          .name = NameOf(script),
          .right_to_left = hb_script_get_horizontal_direction(tag) == HB_DIRECTION_RTL,
          .joins = row && row->behaviour == Behaviour::kJoins,
          .reorders = row && row->behaviour == Behaviour::kReorders};
}

}  // namespace

Script ScriptOf(char32_t ch) {
  const hb_script_t script = hb_unicode_script(hb_unicode_funcs_get_default(), ch);
  return script == HB_SCRIPT_UNKNOWN ? kCommonScript : hb_script_to_iso15924_tag(script);
}

bool LinksLetters(char32_t ch) {
  // Devanagari, Bengali, Gurmukhi, Gujarati, Oriya, Telugu, Kannada, Malayalam, Sinhala, Myanmar,
  // Khmer, Tai Tham, Balinese, Javanese. That of Tamil is a mark on a letter that stands alone.
  constexpr std::array<char32_t, 14> kLinks = {0x094D, 0x09CD, 0x0A4D, 0x0ACD, 0x0B4D,
                                               0x0C4D, 0x0CCD, 0x0D4D, 0x0DCA, 0x1039,
                                               0x17D2, 0x1A60, 0x1B44, 0xA9C0};
  return std::ranges::find(kLinks, ch) != kLinks.end();
}

bool IsCursive(Script script) {
  const ScriptRow* row = RowOf(script);
  return row && row->behaviour == Behaviour::kJoins;
}

bool IsAttached(char32_t ch) {
  return IsMark(ch) || IsIgnorable(ch);
}

bool IsIgnorable(char32_t ch) {
  constexpr char32_t kGraphemeJoiner = 0x34F;
  return ch == kGraphemeJoiner || IsVariationSelector(ch) ||
         CategoryOf(ch) == HB_UNICODE_GENERAL_CATEGORY_FORMAT;
}

std::vector<ComposedCharacter> ComposedCharacters(std::u16string_view text) {
  hb_unicode_funcs_t* functions = hb_unicode_funcs_get_default();
  std::vector<ComposedCharacter> characters;
  size_t starter = 0;      // the place of the last character that marks may join
  unsigned last_rank = 0;  // the combining class of the mark before, 0 after a starter
  for (size_t at = 0; at < text.size();) {
    const size_t start = at;
    const char32_t ch = NextCharacter(text, &at);
    const auto rank = static_cast<unsigned>(hb_unicode_combining_class(functions, ch));
    const bool is_next = starter + 1 == characters.size();
    const bool reaches = starter < characters.size() && (is_next || last_rank < rank);
    hb_codepoint_t composed = 0;
    if (reaches && hb_unicode_compose(functions, characters[starter].ch, ch, &composed)) {
      characters[starter].ch = composed;
      characters[starter].end = at;
      continue;
    }
    if (rank == 0) starter = characters.size();
    last_rank = rank;
    characters.push_back({ch, start, at});
  }
  return characters;
}

bool Decompose(char32_t ch, char32_t* first, char32_t* second) {
  hb_codepoint_t one = 0, two = 0;
  if (!hb_unicode_decompose(hb_unicode_funcs_get_default(), ch, &one, &two)) return false;
  *first = one;
  *second = two;
  return true;
}

std::vector<ScriptNeeds> NeedsOf(std::u16string_view text) {
  std::vector<ScriptNeeds> all;  // of every script of the text
  size_t current = 0;
  for (size_t at = 0; at < text.size();) {
    const char32_t ch = NextCharacter(text, &at);
    const Script script = ScriptOf(ch);
    const bool own = script != kCommonScript && script != kInheritedScript;
    if (own || all.empty()) {
      const Script wanted = own ? script : kCommonScript;
      current =
          static_cast<size_t>(std::ranges::find(all, wanted, &ScriptNeeds::script) - all.begin());
      if (current == all.size()) all.push_back(NeedsOf(wanted));
    }
    if (IsMark(ch) && !IsVariationSelector(ch)) all[current].marks = true;
  }
  std::erase_if(all, [](const ScriptNeeds& needs) {
    return !needs.right_to_left && !needs.joins && !needs.reorders && !needs.marks;
  });
  return all;
}

}  // namespace kerno
