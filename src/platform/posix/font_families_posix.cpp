#include <algorithm>
#include <unordered_map>
#include <utility>

#include "platform/device_context.h"
#include "platform/font_families.h"
#include "platform/posix/font_catalog.h"
#include "platform/posix/unicode.h"

namespace kerno {
namespace {

bool CanBeRead(const CatalogFace& face) {
  return face.has_outlines && face.is_sfnt && !face.families.empty();
}

void AddNames(const CatalogFace& face, ListedFamily* family) {
  for (const CatalogFace::Name& name : face.families) {
    const bool known =
        std::ranges::find(family->names, name.text, &FamilyName::text) != family->names.end();
    if (!known) family->names.push_back({name.text, name.language});
  }
  family->full_names.insert(family->full_names.end(), face.full_names.begin(),
                            face.full_names.end());
}

// The faces of the family that can be read, the one most like a normal face first.
std::vector<const CatalogFace*> MembersOf(std::u16string_view family) {
  std::vector<const CatalogFace*> members = FontCatalog::Current().FindFamily(family, {});
  std::erase_if(members, [](const CatalogFace* face) { return !CanBeRead(*face); });
  return members;
}

constexpr unsigned kBitsOfWord = 32;

void AppendWord(char32_t first, uint32_t word, CharacterSet* characters) {
  for (unsigned bit = 0; word != 0 && bit < kBitsOfWord; ++bit) {
    if ((word >> bit & 1) != 0) Append({first + bit, first + bit}, characters);
  }
}

}  // namespace

std::vector<ListedFamily> ListOutlineFamilies() {
  const std::lock_guard held(FontCatalog::Lock());
  FontCatalog::Refresh();
  std::vector<ListedFamily> families;
  std::unordered_map<std::u16string_view, size_t> places;
  for (const CatalogFace& face : FontCatalog::Current().faces()) {
    if (!CanBeRead(face)) continue;
    const std::u16string& name = face.families.front().system;
    const auto [place, is_new] = places.try_emplace(name, families.size());
    if (is_new) {
      ListedFamily& family = families.emplace_back();
      family.name = name;
      family.fixed_pitch = face.fixed_pitch;
      family.symbols = face.symbols;
    }
    AddNames(face, &families[place->second]);
  }
  return families;
}

void ReadFamilyNames(ListedFamily* /*family*/) {}

std::vector<ListedStyle> ListStyles(std::u16string_view family) {
  const std::lock_guard held(FontCatalog::Lock());
  std::vector<ListedStyle> styles;
  for (const CatalogFace* face : MembersOf(family)) {
    if (face->styles.empty()) continue;
    const bool known = std::ranges::any_of(styles, [&](const ListedStyle& other) {
      return other.face.styles.front() == face->styles.front();
    });
    if (known) continue;
    styles.push_back({{face->styles, face->weight, face->width, face->slanted}, face->has_axes});
  }
  return styles;
}

Status ReadCharacters(std::u16string_view family, CharacterSet* characters) {
  const std::lock_guard held(FontCatalog::Lock());
  const std::vector<const CatalogFace*> members = MembersOf(family);
  if (members.empty()) {
    return Status::Error(Failure::kNotFound, u"face",
                         u"\"" + std::u16string(family) + u"\" is not installed");
  }
  characters->ranges.clear();
  characters->all_planes = true;
  const FcCharSet* set = members.front()->characters;
  if (set == nullptr) return Status::Ok();
  FcChar32 words[FC_CHARSET_MAP_SIZE], next = 0;
  for (FcChar32 page = FcCharSetFirstPage(set, words, &next); page != FC_CHARSET_DONE;
       page = FcCharSetNextPage(set, words, &next)) {
    for (unsigned i = 0; i < FC_CHARSET_MAP_SIZE; ++i) {
      AppendWord(page + i * kBitsOfWord, words[i], characters);
    }
  }
  return Status::Ok();
}

}  // namespace kerno
