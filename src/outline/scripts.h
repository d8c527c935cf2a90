// What Unicode says of a character's script and of how it behaves beside others.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kerno {

// The four letters of an ISO 15924 code, the first one in the highest byte.
using Script = uint32_t;

constexpr Script ScriptCode(const char (&code)[5]) {
  return static_cast<Script>(code[0]) << 24 | static_cast<Script>(code[1]) << 16 |
         static_cast<Script>(code[2]) << 8 | static_cast<Script>(code[3]);
}
constexpr Script kCommonScript = ScriptCode("Zyyy");     // digits, blanks, most punctuation
constexpr Script kInheritedScript = ScriptCode("Zinh");  // marks: that of the letter before

Script ScriptOf(char32_t ch);

// Whether its letters join, so that nothing may stand between two of them.
bool IsCursive(Script script);

// Joins the letter before it to the next one in a syllable, as the virama of Devanagari does.
bool LinksLetters(char32_t ch);

// A mark, a variation selector, a joiner or a control: it belongs to the character before.
bool IsAttached(char32_t ch);

// Shows nothing by itself and has no need of a glyph: a variation selector, a joiner, a control of
// direction.
bool IsIgnorable(char32_t ch);

// A character of a text and the UTF-16 units [start, end) that it stands for.
struct ComposedCharacter {
  char32_t ch = 0;
  size_t start = 0, end = 0;
};

// The characters of a text, letters and their marks as one character where there is one (NFC of a
// text in NFD).
std::vector<ComposedCharacter> ComposedCharacters(std::u16string_view text);

// The two characters that a composed one stands for; false where it stands for itself alone.
bool Decompose(char32_t ch, char32_t* first, char32_t* second);

// What a script's text asks for beyond one glyph after the other.
struct ScriptNeeds {
  Script script = kCommonScript;
  std::string name;  // "Arabic"; empty for marks on no letter
  bool right_to_left = false;
  bool joins = false;     // a letter's form depends on its neighbours
  bool reorders = false;  // letters change places or grow together
  bool marks = false;     // marks of their own code are placed on letters
};

// The scripts of a text that need shaping, in order of appearance.
std::vector<ScriptNeeds> NeedsOf(std::u16string_view text);

}  // namespace kerno
