#include "platform/posix/font_catalog.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <new>
#include <set>
#include <tuple>
#include <utility>

#include "platform/device_context.h"
#include "platform/posix/unicode.h"

namespace kerno {
namespace {

// One of each script that is set in full-width cells: kana, ideographs, Hangul, Bopomofo, and the
// full-width form of a Latin letter.
constexpr std::array<FcChar32, 6> kWideSamples = {0x3042, 0x30A2, 0x4E00, 0xAC00, 0x3105, 0xFF21};

std::string KeyOf(std::u16string_view name, bool vertical) {
  return FaceNameKey(name, vertical ? kMaxFaceName - 1 : kMaxFaceName);
}

std::unique_ptr<FontCatalog>& CurrentSlot() {
  static std::unique_ptr<FontCatalog> catalog;
  return catalog;
}

std::string StringAt(FcPattern* pattern, const char* object, int index) {
  FcChar8* text = nullptr;
  return FcPatternGetString(pattern, object, index, &text) == FcResultMatch
             ? std::string(reinterpret_cast<const char*>(text))
             : std::string();
}

std::vector<std::u16string> TextsOf(FcPattern* pattern, const char* object) {
  std::vector<std::u16string> texts;
  for (int i = 0;; ++i) {
    const std::string text = StringAt(pattern, object, i);
    if (text.empty()) return texts;
    texts.push_back(FromFontconfigText(text));
  }
}

int IntegerOf(FcPattern* pattern, const char* object, int otherwise) {
  int value = 0;
  return FcPatternGetInteger(pattern, object, 0, &value) == FcResultMatch ? value : otherwise;
}

bool IsTrue(FcPattern* pattern, const char* object) {
  FcBool value = FcFalse;
  return FcPatternGetBool(pattern, object, 0, &value) == FcResultMatch && value == FcTrue;
}

int32_t WeightOf(FcPattern* pattern) {
  double weight = 0;
  if (FcPatternGetDouble(pattern, FC_WEIGHT, 0, &weight) != FcResultMatch) {
    return 400;
  }
  const double open_type = FcWeightToOpenTypeDouble(weight);
  return open_type > 0 ? static_cast<int32_t>(std::lround(open_type)) : 400;
}

const FcCharSet* CharactersOf(FcPattern* pattern) {
  FcCharSet* characters = nullptr;
  FcPatternGetCharSet(pattern, FC_CHARSET, 0, &characters);
  return characters;
}

// Fontconfig gives the named instances of a variable face its full name.
std::vector<std::u16string> NamesOfInstance(const CatalogFace& face) {
  std::vector<std::u16string> names;
  for (const CatalogFace::Name& family : face.families) {
    for (const std::u16string& style : face.styles) {
      names.push_back(std::u16string(family.text).append(u" ").append(style));
    }
  }
  return names;
}

// The font of a collection; above it an index holds the instance.
constexpr int kFontOfIndex = 0xFFFF;
int FontOf(FcPattern* pattern) {
  return IntegerOf(pattern, FC_INDEX, 0) & kFontOfIndex;
}

CatalogFace FaceOf(FcPattern* pattern) {
  CatalogFace face;
  face.path = StringAt(pattern, FC_FILE, 0);
  face.index = IntegerOf(pattern, FC_INDEX, 0);
  face.families = FamiliesOf(pattern);
  face.styles = TextsOf(pattern, FC_STYLE);
  face.full_names = face.index >> 16 == 0 ? TextsOf(pattern, FC_FULLNAME) : NamesOfInstance(face);
  face.weight = WeightOf(pattern);
  face.width = IntegerOf(pattern, FC_WIDTH, FC_WIDTH_NORMAL);
  face.slanted = IntegerOf(pattern, FC_SLANT, FC_SLANT_ROMAN) != FC_SLANT_ROMAN;
  const int spacing = IntegerOf(pattern, FC_SPACING, FC_PROPORTIONAL);
  face.fixed_pitch = spacing == FC_DUAL || spacing == FC_MONO || spacing == FC_CHARCELL;
  face.has_outlines = IsTrue(pattern, FC_OUTLINE);
  const std::string format = StringAt(pattern, FC_FONTFORMAT, 0);
  face.is_sfnt = format == "TrueType" || format == "CFF";
  face.covers_wide = face.has_outlines && CoversWide(pattern);
  face.symbols = IsTrue(pattern, FC_SYMBOL);
  face.characters = CharactersOf(pattern);
  return face;
}

// Whether the face has the name only as a part of a wider family, whose members beyond the regular
// and the bold have families of their own beside it.
bool IsDistant(const CatalogFace& face, const std::string& key, bool vertical) {
  return std::none_of(
      face.families.begin(), face.families.end(),
      [&](const CatalogFace::Name& name) { return name.own && KeyOf(name.text, vertical) == key; });
}

auto Rank(const CatalogFace& face, const FaceWish& wish, bool distant) {
  const int32_t distance = std::abs(face.weight - wish.weight);
  // Of two as near the lighter one: bold begins above 550, half way between 400 and 700.
  const bool heavier = face.weight > wish.weight;
  return std::make_tuple(!face.has_outlines, distant, face.slanted != wish.italic,
                         std::abs(face.width - FC_WIDTH_NORMAL), distance, heavier,
                         std::cref(face.path), face.index);
}

}  // namespace

bool CoversWide(FcPattern* pattern) {
  FcCharSet* covered = nullptr;
  return FcPatternGetCharSet(pattern, FC_CHARSET, 0, &covered) == FcResultMatch &&
         std::any_of(kWideSamples.begin(), kWideSamples.end(),
                     [covered](FcChar32 ch) { return FcCharSetHasChar(covered, ch) == FcTrue; });
}

// The families of a face: each has a name in one language or more, and the names of one language
// stand in the order of the families.
std::vector<CatalogFace::Name> FamiliesOf(FcPattern* pattern) {
  std::vector<CatalogFace::Name> names;
  std::vector<std::string> languages;
  for (int i = 0;; ++i) {
    const std::string text = StringAt(pattern, FC_FAMILY, i);
    if (text.empty()) {
      break;
    }
    CatalogFace::Name name;
    name.text = FromFontconfigText(text);
    name.language = StringAt(pattern, FC_FAMILYLANG, i);
    names.push_back(std::move(name));
    languages.push_back(StringAt(pattern, FC_FAMILYLANG, i));
  }
  std::vector<size_t> english;
  for (size_t i = 0; i < names.size(); ++i) {
    if (languages[i].starts_with("en")) {
      english.push_back(i);
    }
  }
  for (size_t i = 0; i < names.size(); ++i) {
    const auto family = static_cast<size_t>(
        std::count(languages.begin(), languages.begin() + static_cast<ptrdiff_t>(i), languages[i]));
    const bool translated = !languages[i].starts_with("en") && !english.empty();
    names[i].system =
        (translated ? names[english[std::min(family, english.size() - 1)]].text : names[i].text)
            .substr(0, kMaxFaceName);
    names[i].own = std::find(languages.begin() + static_cast<ptrdiff_t>(i) + 1, languages.end(),
                             languages[i]) == languages.end();
  }
  return names;
}

std::recursive_mutex& FontCatalog::Lock() {
  static std::recursive_mutex lock;
  return lock;
}

FontCatalog& FontCatalog::Current() {
  auto& slot = CurrentSlot();
  if (!slot) {
    slot = std::make_unique<FontCatalog>();
  }
  return *slot;
}

void FontCatalog::Refresh() {
  auto& slot = CurrentSlot();
  if (slot && !slot->IsUpToDate()) {
    slot.reset();
  }
}

void FontCatalog::Forget() {
  CurrentSlot().reset();
}

std::vector<std::string>& FontCatalog::AddedFiles() {
  static std::vector<std::string> files;
  return files;
}

FontCatalog::FontCatalog() : config_(FcInitLoadConfigAndFonts()) {
  if (config_ == nullptr) throw std::bad_alloc();  // nothing else stops Fontconfig
  for (const std::string& file : AddedFiles()) {
    FcConfigAppFontAddFile(config_, reinterpret_cast<const FcChar8*>(file.c_str()));
  }
  std::set<std::pair<std::string, int>> variable;
  for (const FcSetName set_name : {FcSetSystem, FcSetApplication}) {
    const FcFontSet* set = FcConfigGetFonts(config_, set_name);
    for (int i = 0; set != nullptr && i < set->nfont; ++i) {
      // A variable face is listed once as such and once for each of its named instances.
      if (!IsTrue(set->fonts[i], FC_VARIABLE)) {
        faces_.push_back(FaceOf(set->fonts[i]));
      } else {
        variable.emplace(StringAt(set->fonts[i], FC_FILE, 0), FontOf(set->fonts[i]));
      }
    }
  }
  for (CatalogFace& face : faces_) {
    face.has_axes = variable.contains({face.path, face.index & kFontOfIndex});
  }
  for (size_t i = 0; i < faces_.size(); ++i) {
    for (const CatalogFace::Name& name : faces_[i].families) {
      by_name_.emplace(KeyOf(name.text, false), i);
      if (faces_[i].covers_wide) {
        by_vertical_name_.emplace(KeyOf(name.text, true), i);
      }
    }
  }
}

FontCatalog::~FontCatalog() {
  FcConfigDestroy(config_);
}

bool FontCatalog::IsUpToDate() const {
  return FcConfigUptoDate(config_) == FcTrue;
}

std::vector<const CatalogFace*> FontCatalog::FindFamily(std::u16string_view name,
                                                        const FaceWish& wish) const {
  std::vector<const CatalogFace*> found;
  const auto& names = wish.vertical ? by_vertical_name_ : by_name_;
  const std::string key = KeyOf(name, wish.vertical);
  const auto [begin, end] = names.equal_range(key);
  for (auto at = begin; at != end; ++at) {
    found.push_back(&faces_[at->second]);
  }
  std::sort(found.begin(), found.end(), [&](const CatalogFace* a, const CatalogFace* b) {
    return Rank(*a, wish, IsDistant(*a, key, wish.vertical)) <
           Rank(*b, wish, IsDistant(*b, key, wish.vertical));
  });
  found.erase(std::unique(found.begin(), found.end()), found.end());
  return found;
}

std::vector<const CatalogFace*> FontCatalog::FindFullName(std::u16string_view name) const {
  constexpr size_t kWhole = std::u16string_view::npos;
  const std::string key = FaceNameKey(name, kWhole);
  std::vector<const CatalogFace*> found;
  for (const CatalogFace& face : faces_) {
    const bool named = std::ranges::any_of(face.full_names, [&](const std::u16string& full) {
      return FaceNameKey(full, kWhole) == key;
    });
    if (named && !face.families.empty()) found.push_back(&face);
  }
  return found;
}

const std::vector<const CatalogFace*>& FontCatalog::Substitutes(std::u16string_view name,
                                                                const FaceWish& wish) const {
  const std::u16string key(name.substr(0, kMaxFaceName));
  const auto [known, is_new] =
      substitutes_.try_emplace(std::tuple(key, wish.weight, wish.italic, wish.vertical));
  if (is_new) known->second = FindSubstitutes(key, wish);
  return known->second;
}

std::vector<const CatalogFace*> FontCatalog::FindSubstitutes(const std::u16string& name,
                                                             const FaceWish& wish) const {
  std::vector<const CatalogFace*> found;
  FcPattern* pattern = FcPatternCreate();
  if (pattern == nullptr) {
    return found;
  }
  const std::string family = ToFontconfigText(name);
  if (!family.empty()) {
    FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8*>(family.c_str()));
  }
  FcPatternAddDouble(pattern, FC_WEIGHT, FcWeightFromOpenTypeDouble(wish.weight));
  FcPatternAddInteger(pattern, FC_SLANT, wish.italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
  FcConfigSubstitute(config_, pattern, FcMatchPattern);
  FcDefaultSubstitute(pattern);
  FcResult result = FcResultNoMatch;
  FcFontSet* sorted = FcFontSort(config_, pattern, FcFalse, nullptr, &result);
  for (int i = 0; sorted != nullptr && i < sorted->nfont; ++i) {
    const std::string first = StringAt(sorted->fonts[i], FC_FAMILY, 0);
    const auto members = FindFamily(FromFontconfigText(first), wish);
    found.insert(found.end(), members.begin(), members.end());
  }
  if (sorted != nullptr) {
    FcFontSetDestroy(sorted);
  }
  FcPatternDestroy(pattern);
  std::stable_partition(found.begin(), found.end(),
                        [](const CatalogFace* face) { return face->has_outlines; });
  return found;
}

const SfntFacts& FontCatalog::FactsOf(const CatalogFace& face) const {
  auto known = facts_.find(&face);
  const bool failed = known != facts_.end() && !known->second.reading.ok();
  if (known == facts_.end() || failed) {  // a failure may pass
    const auto index = static_cast<uint32_t>(face.index) & 0xFFFF;
    known = facts_.insert_or_assign(&face, ReadSfntFacts(face.path, index)).first;
  }
  return known->second;
}

std::vector<std::string> FontCatalog::Folders() const {
  std::vector<std::string> folders;
  FcStrList* list = FcConfigGetFontDirs(config_);
  if (list == nullptr) {
    return folders;
  }
  while (const FcChar8* folder = FcStrListNext(list)) {
    folders.emplace_back(reinterpret_cast<const char*>(folder));
  }
  FcStrListDone(list);
  return folders;
}

std::u16string SystemName(const CatalogFace& face, std::u16string_view name, bool vertical) {
  const std::string key = KeyOf(name, vertical);
  auto found = std::find_if(
      face.families.begin(), face.families.end(),
      [&](const CatalogFace::Name& family) { return KeyOf(family.text, vertical) == key; });
  if (found == face.families.end()) {
    found = face.families.begin();
  }
  const std::u16string mark = vertical ? u"@" : u"";
  return (mark + (found != face.families.end() ? found->system : u"")).substr(0, kMaxFaceName);
}

}  // namespace kerno
