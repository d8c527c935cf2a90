// The rows of the list of faces: what passes a filter, in which order.
#include <algorithm>
#include <chrono>
#include <tuple>

#include "app/captions.h"
#include "app/face_catalogue.h"
#include "app/specimen.h"
#include "base/text.h"
#include "outline/scripts.h"

namespace kerno {
namespace {

using Time = std::chrono::steady_clock;
constexpr std::chrono::milliseconds kReading{5};  // of faces that are not known yet, in one call

// The distinct characters that a face must have glyphs for.
std::vector<char32_t> NeededCharacters(std::u16string_view text) {
  std::vector<char32_t> needed;
  for (const ComposedCharacter& character : ComposedCharacters(text)) {
    const bool blank = character.ch <= U' ' || character.ch == 0xA0 || character.ch == 0x3000 ||
                       character.ch == 0x85 || character.ch == 0x2028 || character.ch == 0x2029;
    if (!blank && !IsIgnorable(character.ch)) needed.push_back(character.ch);
  }
  std::ranges::sort(needed);
  needed.erase(std::unique(needed.begin(), needed.end()), needed.end());
  return needed;
}

// Fonts of outlines set a letter of its parts where they have no glyph for the whole.
bool HasOrMakes(const CharacterSet& characters, char32_t ch) {
  char32_t first = 0, second = 0;
  return characters.Has(ch) || (Decompose(ch, &first, &second) && HasOrMakes(characters, first) &&
                                (second == 0 || characters.Has(second)));
}

// Fonts of pictures have them in a block of their own.
bool HasPicture(const CharacterSet& characters, char32_t ch) {
  constexpr char32_t kPictures = 0xF000, kMost = 0xFF;
  return characters.Has(ch) || (ch <= kMost && characters.Has(kPictures + ch));
}

// Lists of names as one text: "|" between them, and what the settings would take away as "%" and
// two hexadecimal digits.
std::u16string StoredNames(const std::vector<std::u16string>& names) {
  constexpr std::u16string_view kDigits = u"0123456789ABCDEF", kMarks = u"|%\"'";
  std::u16string text;
  for (const std::u16string& name : names) {
    if (!text.empty()) text += u'|';
    for (const char16_t unit : name) {
      const bool plain = unit > u' ' && kMarks.find(unit) == kMarks.npos;
      const bool inner = unit == u' ' && &unit != &name.front() && &unit != &name.back();
      if (plain || inner) {
        text += unit;
      } else {
        text.append(u"%").append(1, kDigits[unit >> 4 & 15U]).append(1, kDigits[unit & 15U]);
      }
    }
  }
  return text;
}

int DigitOf(char16_t unit) {
  if (unit >= u'0' && unit <= u'9') return unit - u'0';
  return unit >= u'A' && unit <= u'F' ? unit - u'A' + 10 : -1;
}

std::vector<std::u16string> NamesOfStored(std::u16string_view text) {
  std::vector<std::u16string> names;
  std::u16string name;
  const auto finish = [&] {
    const bool known = std::ranges::find(names, name) != names.end();
    if (!name.empty() && !known) names.push_back(name);
    name.clear();
  };
  for (size_t i = 0; i < text.size(); ++i) {
    const int high = text[i] == u'%' && i + 2 < text.size() ? DigitOf(text[i + 1]) : -1;
    const int low = high >= 0 ? DigitOf(text[i + 2]) : -1;
    if (text[i] == u'|') {
      finish();
    } else if (low >= 0) {
      name += static_cast<char16_t>(high * 16 + low);
      i += 2;
    } else {
      name += text[i];
    }
  }
  finish();
  return names;
}

size_t PlaceOf(const std::vector<std::u16string>& names, const std::u16string& name) {
  return static_cast<size_t>(std::ranges::find(names, name) - names.begin());
}

}  // namespace

// Of a family its name, so that a list can be read and changed by hand.
std::u16string FaceCatalogue::KeyOf(const Item& item) const {
  switch (item.entry.kind) {
    case FaceKind::kStrokes:
      return u"strokes:" + item.entry.given;
    case FaceKind::kFile:
      return u"file:" + item.entry.given;
    default:
      return item.entry.given;
  }
}

bool FaceCatalogue::HasText(Item* item) {
  if (item->has) return *item->has;
  const CharacterSet& characters = *item->characters;
  const FaceKind kind = item->entry.kind;
  constexpr char32_t kLastOfFirstPlane = 0xFFFF;
  const bool unknown = !characters.all_planes && !has_characters_.empty() &&
                       has_characters_.back() > kLastOfFirstPlane;
  const bool has = std::ranges::all_of(has_characters_, [&](char32_t ch) {
    if (unknown && ch > kLastOfFirstPlane) return true;
    if (kind == FaceKind::kStrokes) return characters.Has(ch);
    if (kind == FaceKind::kSymbols) return HasPicture(characters, ch);
    return HasOrMakes(characters, ch);
  });
  item->has = has && (!unknown || CoversText({.family = item->entry.given}, has_text_));
  return *item->has;
}

// Of a face whose characters are known.
bool FaceCatalogue::Passes(const FaceFilter& filter, Item* item) {
  if (!filter.script.empty()) {
    const auto scripts = FaceScripts();
    const auto script = std::ranges::find(scripts, filter.script, &FaceScript::name);
    const auto bit = static_cast<unsigned>(script - scripts.begin());
    if (script == scripts.end() || (item->scripts >> bit & 1) == 0) return false;
  }
  return filter.has.empty() || HasText(item);
}

std::u16string FaceCatalogue::NoteOf(const Item& item, size_t found_name) const {
  const FaceEntry& entry = item.entry;
  if (found_name > 0) {
    const auto name = std::ranges::find_if(entry.names, [&](const FamilyName& known) {
      return FoldedName(known.text) == item.search.names[found_name];
    });
    if (name != entry.names.end()) return name->text;
  }
  switch (entry.kind) {
    case FaceKind::kSymbols:
      return Say(u"symbols");
    case FaceKind::kStrokes:
      return Say(u"single lines");
    case FaceKind::kFile:
      return PathText(entry.file.filename());
    case FaceKind::kOutlines:
      break;
  }
  return entry.fixed_pitch ? Say(u"fixed width") : u"";
}

FaceRows FaceCatalogue::Rows(const FaceFilter& filter) {
  SortByName();
  if (filter.has != has_text_) {
    has_text_ = filter.has;
    has_characters_ = NeededCharacters(has_text_);
    for (Item& item : items_) item.has.reset();
  }
  const auto end = Time::now() + kReading;
  const std::u16string search = FoldedName(filter.search);
  struct Find {
    int rank;
    size_t recent;
    bool other;
    size_t entry, name;
  };
  std::vector<Find> finds;
  FaceRows made;
  made.complete = next_ == items_.size();
  for (const size_t entry : order_) {
    Item& item = items_[entry];
    const std::u16string key = KeyOf(item);
    const bool favourite = PlaceOf(favourites_, key) < favourites_.size();
    if (filter.favourites && !favourite) continue;
    if (filter.strokes && item.entry.kind != FaceKind::kStrokes) continue;
    const auto found = FindName(item.search, search);
    if (!found) continue;
    if (!filter.script.empty() || !filter.has.empty()) {
      if (!item.characters && Time::now() < end) CharactersOf(entry);
      if (!item.characters || !Passes(filter, &item)) continue;
    }
    finds.push_back({found->rank, PlaceOf(recent_, key), !favourite, entry, found->name});
  }
  std::ranges::stable_sort(finds, {}, [&](const Find& find) {
    return search.empty() ? std::tuple(0, find.recent, find.other)
                          : std::tuple(find.rank, size_t{0}, false);
  });
  for (const Find& find : finds) {
    const Item& item = items_[find.entry];
    made.rows.push_back({.name = item.entry.name,
                         .note = NoteOf(item, find.name),
                         .favourite = !find.other,
                         .recent = find.recent < recent_.size(),
                         .kind = item.entry.kind,
                         .entry = find.entry});
  }
  return made;
}

std::vector<std::string> FaceCatalogue::Scripts() const {
  FaceScriptSet all = 0;
  for (const Item& item : items_) all |= item.scripts;
  std::vector<std::string> names;
  for (const FaceScript& script : FaceScripts()) {
    if ((all & 1) != 0) names.emplace_back(script.name);
    all >>= 1;
  }
  return names;
}

bool FaceCatalogue::IsFavourite(size_t entry) const {
  return PlaceOf(favourites_, KeyOf(items_[entry])) < favourites_.size();
}

void FaceCatalogue::ToggleFavourite(size_t entry) {
  std::u16string key = KeyOf(items_[entry]);
  if (std::erase(favourites_, key) == 0) favourites_.insert(favourites_.begin(), std::move(key));
}

void FaceCatalogue::NoteUse(size_t entry) {
  std::u16string key = KeyOf(items_[entry]);
  std::erase(recent_, key);
  recent_.insert(recent_.begin(), std::move(key));
  if (recent_.size() > kMostRecent) recent_.pop_back();
}

std::u16string FaceCatalogue::StoredFavourites() const {
  return StoredNames(favourites_);
}
std::u16string FaceCatalogue::StoredRecent() const {
  return StoredNames(recent_);
}

void FaceCatalogue::SetStored(std::u16string_view favourites, std::u16string_view recent) {
  favourites_ = NamesOfStored(favourites);
  recent_ = NamesOfStored(recent);
  if (recent_.size() > kMostRecent) recent_.resize(kMostRecent);
}

}  // namespace kerno
