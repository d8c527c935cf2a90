#include "app/face_catalogue.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <tuple>
#include <utility>

#include "app/captions.h"
#include "app/stroke_fonts.h"
#include "base/text.h"
#include "platform/font_file.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

// The name in the language; else the English one; else the system's.
std::u16string NameIn(std::string_view language, const std::vector<FamilyName>& names) {
  for (const std::string_view wanted : {language, std::string_view("en")}) {
    const auto name = std::ranges::find_if(names, [&](const FamilyName& known) {
      const std::string_view tag = known.language;
      return tag.substr(0, tag.find('-')) == wanted;
    });
    if (!wanted.empty() && name != names.end()) return name->text;
  }
  return names.front().text;
}

auto LikenessOf(const FaceStyle& style) {
  const int32_t distance = std::abs(style.weight - 400);
  return std::tuple(style.slanted, std::abs(style.width - 100), distance, style.weight > 400);
}

void SortStyles(std::vector<FaceStyle>* styles) {
  std::ranges::stable_sort(*styles, {}, [](const FaceStyle& style) {
    return std::tuple(style.made, style.index, std::abs(style.width - 100), style.width,
                      style.weight, style.slanted);
  });
}

StyledFace Styled(const FaceStyle& style) {
  return {{style.name}, style.weight, style.width, style.slanted};
}

// Bold and slanted letters that a family lacks, as far as they can be made of what it has.
// `likely` stand in the order of their likeness to a normal face.
std::vector<FaceStyle> StylesToMake(const std::vector<FaceStyle>& likely) {
  std::vector<StyledFace> faces;
  for (const FaceStyle& style : likely) faces.push_back(Styled(style));
  std::vector<FaceStyle> made;
  for (const std::u16string_view name : {u"Bold", u"Oblique", u"Bold Oblique"}) {
    const auto choice = faces.empty() ? std::nullopt : ChooseStyle(name, faces);
    if (!choice || !(choice->make_bold || choice->make_slanted)) continue;
    FaceStyle style = likely[choice->face];
    style.name = name;
    style.made = true;
    constexpr int32_t kBold = 700;
    if (choice->make_bold) style.weight = kBold;
    style.slanted |= choice->make_slanted;
    made.push_back(std::move(style));
  }
  return made;
}

// The styles of the fonts of a file, which say their family where it has more than one.
std::vector<FaceStyle> StylesIn(const std::vector<FontFileFace>& faces) {
  const auto family = [](const FontFileFace& face) {
    return face.families.empty() ? std::u16string() : face.families.front();
  };
  const bool mixed = std::ranges::any_of(
      faces, [&](const FontFileFace& face) { return family(face) != family(faces.front()); });
  std::vector<FaceStyle> styles;
  for (const FontFileFace& face : faces) {
    FaceStyle style;
    style.own_name = face.style.styles.empty() ? u"" : face.style.styles.front();
    style.name = mixed ? family(face) + u" " + style.own_name : style.own_name;
    style.weight = face.style.weight;
    style.width = face.style.width;
    style.slanted = face.style.slanted;
    style.variable = true;  // ask the file
    style.index = face.index;
    const bool known = std::ranges::any_of(styles, [&](const FaceStyle& other) {
      return other.index == style.index && other.name == style.name;
    });
    if (!known) styles.push_back(std::move(style));
  }
  return styles;
}

// What users call the axes that many fonts have.
std::u16string AxisName(const FontAxis& axis) {
  constexpr auto kNames =
      std::to_array<std::pair<std::string_view, std::u16string_view>>({{"wght", u"Weight"},
                                                                       {"wdth", u"Width"},
                                                                       {"slnt", u"Slant"},
                                                                       {"ital", u"Italic"},
                                                                       {"opsz", u"Optical size"}});
  const auto* known =
      std::ranges::find(kNames, axis.tag, &std::pair<std::string_view, std::u16string_view>::first);
  if (known != kNames.end()) return Say(known->second);
  return axis.name.empty() ? Utf8ToUtf16Lossy(axis.tag) : axis.name;
}

}  // namespace

void FaceCatalogue::Add(Item item) {
  ShowName(&item);
  items_.push_back(std::move(item));
  sorted_ = false;
}

void FaceCatalogue::Read(std::string_view language) {
  language_ = language;
  std::vector<Item> opened;
  for (Item& item : items_) {
    if (item.opened) opened.push_back(std::move(item));
  }
  items_.clear();
  next_ = 0;
  for (ListedFamily& family : ListOutlineFamilies()) {
    Item item;
    item.entry.kind = family.symbols ? FaceKind::kSymbols : FaceKind::kOutlines;
    item.entry.given = family.name;
    item.entry.names = std::move(family.names);
    item.entry.fixed_pitch = family.fixed_pitch;
    item.family = std::move(family);
    Add(std::move(item));
  }
  for (StrokeFontFile& font : InstalledStrokeFonts()) {
    Item item;
    item.entry.kind = FaceKind::kStrokes;
    item.entry.given = font.name;
    item.entry.names = {{std::move(font.name), {}}};
    item.entry.file = std::move(font.file);
    Add(std::move(item));
  }
  for (Item& item : opened) Add(std::move(item));
}

void FaceCatalogue::ShowNamesIn(std::string_view language) {
  language_ = language;
  for (Item& item : items_) {
    ShowName(&item);
    item.axes.clear();  // they have names
  }
  sorted_ = false;
}

void FaceCatalogue::ShowName(Item* item) const {
  item->entry.name = NameIn(language_, item->entry.names);
  SearchNames& search = item->search;
  search.names = {FoldedName(item->entry.name)};
  search.full_names.clear();
  for (const FamilyName& name : item->entry.names) {
    std::u16string folded = FoldedName(name.text);
    if (folded != search.names.front()) search.names.push_back(std::move(folded));
  }
  for (const std::u16string& name : item->family.full_names) {
    search.full_names.push_back(FoldedName(name));
  }
}

void FaceCatalogue::SortByName() {
  if (sorted_) return;
  order_.resize(items_.size());
  for (size_t i = 0; i < order_.size(); ++i) order_[i] = i;
  std::ranges::stable_sort(order_, [&](size_t a, size_t b) {
    return items_[a].search.names.front() < items_[b].search.names.front();
  });
  sorted_ = true;
}

Status FaceCatalogue::AddOutlineFile(const fs::path& file, Item* item) {
  FontData first;
  if (Status found = FindFontData({.file = file}, &first); !found.ok()) return found;
  const std::vector<FontFileFace> faces = FacesIn(first.file->bytes());
  FaceEntry& entry = item->entry;
  entry.kind = FaceKind::kFile;
  entry.given = PathText(file);
  entry.file = file;
  entry.names = {{PathText(file.filename()), {}}};
  std::vector<FamilyName> families;
  for (const FontFileFace& face : faces) {
    for (const FamilyName& name : face.family_names) {
      if (std::ranges::find(families, name) == families.end()) families.push_back(name);
    }
    item->family.full_names.insert(item->family.full_names.end(), face.full_names.begin(),
                                   face.full_names.end());
  }
  const bool one_font = std::ranges::all_of(
      faces, [&](const FontFileFace& face) { return face.index == faces.front().index; });
  // A collection goes by the name of its file, and is found by the beginnings of the others.
  for (FamilyName& name : families) {
    if (!one_font) item->family.full_names.push_back(std::move(name.text));
  }
  if (one_font) entry.names.insert(entry.names.begin(), families.begin(), families.end());
  std::vector<FaceStyle> styles = StylesIn(faces);
  const auto first_choice = [&](const FaceStyle& style) {
    return !style.made && style.index == first.index && style.own_name == first.style;
  };
  if (one_font) {
    std::vector<FaceStyle> likely = styles;
    std::ranges::stable_sort(likely, {}, LikenessOf);
    for (FaceStyle& style : StylesToMake(likely)) {
      style.own_name = style.name;
      FontData made;
      if (!FindFontData({.style = style.name, .file = file}, &made).ok()) continue;
      style.made = made.make_bold || made.make_slanted;
      styles.push_back(std::move(style));
    }
  }
  SortStyles(&styles);
  const auto regular = std::ranges::find_if(styles, first_choice);
  item->regular = regular != styles.end() ? static_cast<size_t>(regular - styles.begin()) : 0;
  item->styles = std::move(styles);
  return Status::Ok();
}

Status FaceCatalogue::AddFile(const fs::path& file, size_t* entry) {
  if (const auto known = FindFile(file)) {
    *entry = *known;
    return Status::Ok();
  }
  Item item;
  item.opened = true;
  if (Status added = AddOutlineFile(file, &item); !added.ok()) {
    if (!IsStrokeFontName(file)) return added;
    ChosenStrokeFont chosen;
    if (Status read = ChooseStrokeFont(PathText(file), &chosen); !read.ok()) return read;
    item.entry.kind = FaceKind::kStrokes;
    item.entry.given = PathText(file);
    item.entry.names = {{chosen.font.family, {}}, {PathText(file.filename()), {}}};
    item.entry.file = file;
  }
  Add(std::move(item));
  *entry = items_.size() - 1;
  return Status::Ok();
}

std::vector<FaceStyle> FaceCatalogue::ReadStyles(const Item& item, size_t* regular) const {
  *regular = 0;
  if (item.entry.kind == FaceKind::kStrokes) return {FaceStyle{}};
  std::vector<FaceStyle> styles;
  for (const ListedStyle& listed : ListStyles(item.entry.given)) {
    FaceStyle style;
    style.name = style.own_name = listed.face.styles.front();
    style.weight = listed.face.weight;
    style.width = listed.face.width;
    style.slanted = listed.face.slanted;
    style.variable = listed.variable;
    styles.push_back(std::move(style));
  }
  if (styles.empty()) return {FaceStyle{}};
  const std::u16string first = styles.front().name;
  for (FaceStyle& style : StylesToMake(styles)) {
    style.own_name = style.name;
    FontData data;
    if (style.variable) {
      if (!FindFontData(StyleRequest(item, style), &data).ok()) continue;
      style.made = data.make_bold || data.make_slanted;
    }
    styles.push_back(std::move(style));
  }
  SortStyles(&styles);
  *regular =
      static_cast<size_t>(std::ranges::find(styles, first, &FaceStyle::name) - styles.begin());
  return styles;
}

const std::vector<FaceStyle>& FaceCatalogue::StylesOf(size_t entry) {
  Item& item = items_[entry];
  if (!item.styles) item.styles = ReadStyles(item, &item.regular);
  return *item.styles;
}

size_t FaceCatalogue::RegularStyleOf(size_t entry) {
  StylesOf(entry);
  return items_[entry].regular;
}

const std::vector<FaceAxis>& FaceCatalogue::AxesOf(size_t entry, size_t style) {
  Item& item = items_[entry];
  const auto [known, is_new] = item.axes.try_emplace(style);
  if (!is_new || !StylesOf(entry)[style].variable) return known->second;
  FontData data;
  std::vector<FontAxis> axes;
  std::vector<double> places;
  const bool read = FindFontData(RequestOf({entry, style, {}}), &data).ok() &&
                    ReadAxes(data, &axes, &places).ok();
  for (size_t i = 0; read && i < axes.size(); ++i) {
    if (axes[i].hidden) continue;
    axes[i].name = AxisName(axes[i]);
    known->second.push_back({std::move(axes[i]), places[i]});
  }
  return known->second;
}

const CharacterSet& FaceCatalogue::CharactersOf(size_t entry) {
  Item& item = items_[entry];
  if (item.characters) return *item.characters;
  CharacterSet& characters = item.characters.emplace();
  FontData data;
  Status read;
  switch (item.entry.kind) {
    case FaceKind::kStrokes:
      read = ReadStrokeCharacters(item.entry.file, &characters);
      break;
    case FaceKind::kFile:
      read = FindFontData({.file = item.entry.file}, &data);
      if (read.ok()) read = ReadCharacters(data, &characters);
      break;
    default:
      read = ReadCharacters(item.entry.given, &characters);
  }
  if (!read.ok()) characters = {};  // it is known to have none
  // Pictures may stand in the places of letters.
  if (item.entry.kind != FaceKind::kSymbols) item.scripts = ScriptsIn(characters);
  return characters;
}

FaceScriptSet FaceCatalogue::ScriptsOf(size_t entry) {
  CharactersOf(entry);
  return items_[entry].scripts;
}

bool FaceCatalogue::ReadNext() {
  while (next_ < items_.size()) {
    Item& item = items_[next_];
    const bool named = item.family.all_names;
    if (!named) {
      item.family.names = item.entry.names;
      ReadFamilyNames(&item.family);
      item.entry.names = item.family.names;
      ShowName(&item);
      sorted_ = false;
    }
    const bool known = item.characters.has_value();
    CharactersOf(next_++);
    if (!known || !named) return true;
  }
  return false;
}

}  // namespace kerno
