#include "app/face_scripts.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "base/text.h"
#include "outline/scripts.h"

namespace kerno {
namespace {

constexpr auto kScripts = std::to_array<FaceScript>({
    {"Latin", u"AEHMSZ", u"Aa Bb Gg 123"},
    {"Greek", u"ΓΔΛΣΩαβγλσω", u"Ξεσκεπάζω"},
    {"Cyrillic", u"БДЖИЯбджия", u"Съешь же"},
    {"Kana", u"あいかのンアイカ", u"あア いろは"},
    {"Kanji", u"一人大日本文字国", u"永和 日本国"},
    {"Hangul", u"가나다한글", u"한글 가나다"},
    {"Bopomofo", u"ㄅㄆㄇㄚㄧ", u"ㄅㄆㄇㄈ"},
    {"Arabic", u"ابجدهوعم", u"أبجد هوز"},
    {"Hebrew", u"אבגדשת", u"אבגדה"},
    {"Devanagari", u"अकगतनमरि", u"नमस्ते"},
    {"Bengali", u"অকগতনমরি", u"বাংলা"},
    {"Gurmukhi", u"ਅਕਗਤਨਮਰਿ", u"ਪੰਜਾਬੀ"},
    {"Gujarati", u"અકગતનમરિ", u"ગુજરાતી"},
    {"Oriya", u"ଅକଗତନମରି", u"ଓଡ଼ିଆ"},
    {"Tamil", u"அகதநமரி", u"தமிழ்"},
    {"Telugu", u"అకగతనమరి", u"తెలుగు"},
    {"Kannada", u"ಅಕಗತನಮರಿ", u"ಕನ್ನಡ"},
    {"Malayalam", u"അകഗതനമരി", u"മലയാളം"},
    {"Sinhala", u"අකගතනමරි", u"සිංහල"},
    {"Thai", u"กขคงนมาิ", u"ภาษาไทย"},
    {"Lao", u"ກຂຄງນມາິ", u"ພາສາລາວ"},
    {"Khmer", u"កខគងនមា", u"ភាសាខ្មែរ"},
    {"Myanmar", u"ကခဂငနမာ", u"မြန်မာ"},
    {"Tibetan", u"ཀཁགངནམི", u"བོད་ཡིག"},
    {"Georgian", u"აბგდემნ", u"ქართული"},
    {"Armenian", u"ԱԲԳաբգդ", u"Հայերեն"},
    {"Ethiopic", u"ሀለሐመሠ", u"አማርኛ"},
    {"Mongolian", u"ᠠᠡᠢᠨᠮ", u"ᠮᠣᠩᠭᠣᠯ"},
    {"Braille", u"⠁⠃⠉⠙⠑", u"⠅⠑⠗⠝⠕"},
});
static_assert(kScripts.size() <= 64);

constexpr size_t kLatin = 0, kFirstOfOneLanguage = 3;  // those before it are in fonts of many

bool HasAll(const CharacterSet& characters, std::u16string_view text) {
  for (size_t at = 0; at < text.size();) {
    if (!characters.Has(NextCharacter(text, &at))) return false;
  }
  return true;
}

bool IsShown(char32_t ch) {
  constexpr char32_t kSpace = 0x20, kLastControl = 0x9F, kDelete = 0x7F;
  if (ch <= kSpace || (ch >= kDelete && ch <= kLastControl)) return false;
  return !IsUnseen(ch) && !IsAttached(ch) && ch != 0x00A0 && ch != 0x3000;
}

std::u16string FirstCharacters(const CharacterSet& characters) {
  constexpr size_t kMost = 8;
  std::u16string text;
  size_t count = 0;
  for (const CharacterRange& range : characters.ranges) {
    for (char32_t ch = range.first; ch <= range.last && count < kMost; ++ch) {
      if (!IsShown(ch)) continue;
      AppendCharacter(&text, ch);
      ++count;
    }
  }
  return text;
}

}  // namespace

std::span<const FaceScript> FaceScripts() {
  return kScripts;
}

FaceScriptSet ScriptsIn(const CharacterSet& characters) {
  FaceScriptSet set = 0;
  for (size_t i = 0; i < kScripts.size(); ++i) {
    if (HasAll(characters, kScripts[i].letters)) set |= FaceScriptSet{1} << i;
  }
  return set;
}

// A font that writes Latin, Greek and Cyrillic has whatever else it writes beside them.
std::u16string OwnSample(FaceScriptSet set, const CharacterSet& characters) {
  constexpr FaceScriptSet kMany = (FaceScriptSet{1} << kFirstOfOneLanguage) - 1;
  const bool of_many = (set & kMany) == kMany;
  const FaceScript* own = nullptr;
  for (size_t i = kScripts.size(); i-- > 0;) {
    if ((set >> i & 1) == 0) continue;
    if (i < kFirstOfOneLanguage && own) break;
    own = &kScripts[i];
  }
  if (of_many) own = &kScripts[kLatin];
  return own ? std::u16string(own->sample) : FirstCharacters(characters);
}

}  // namespace kerno
