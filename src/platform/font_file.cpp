#include "platform/font_file.h"

#include <algorithm>
#include <array>
#include <map>
#include <tuple>
#include <utility>

#include "platform/big_endian.h"
#include "platform/fold_case.h"

namespace kerno {
namespace {

constexpr uint32_t kMostFonts = 256, kMostInstances = 1024, kMostNames = 4096;
constexpr int32_t kBoldWeight = 700;

constexpr uint32_t Tag(const char (&name)[5]) {
  uint32_t tag = 0;
  for (int i = 0; i < 4; ++i) tag = tag << 8 | static_cast<uint8_t>(name[i]);
  return tag;
}

// Where each font's directory of tables begins.
std::vector<size_t> DirectoriesIn(std::string_view bytes) {
  std::vector<size_t> starts;
  if (Big(bytes, 0, 4) != Tag("ttcf")) {
    starts.push_back(0);
  } else {
    const uint32_t count = std::min(Big(bytes, 8, 4), kMostFonts);
    for (uint32_t i = 0; i < count; ++i) starts.push_back(Big(bytes, 12 + size_t{4} * i, 4));
  }
  return starts;
}

bool IsDirectory(std::string_view bytes, size_t start) {
  const uint32_t kind = Big(bytes, start, 4);
  return kind == 0x00010000 || kind == Tag("OTTO") || kind == Tag("true");
}

struct TablePlace {
  size_t offset = 0, length = 0;
};

// The tables of a font as its directory tells them, which may lie beyond the end.
std::map<uint32_t, TablePlace> TablesOf(std::string_view bytes, size_t start) {
  std::map<uint32_t, TablePlace> tables;
  if (!IsDirectory(bytes, start)) return tables;
  const uint32_t count = Big(bytes, start + 4, 2);
  for (uint32_t i = 0; i < count; ++i) {
    const size_t entry = start + 12 + size_t{16} * i;
    tables.try_emplace(Big(bytes, entry, 4),
                       TablePlace{Big(bytes, entry + 8, 4), Big(bytes, entry + 12, 4)});
  }
  return tables;
}

// One font's directory.
class Tables {
 public:
  Tables(std::string_view bytes, size_t start) : bytes_(bytes), places_(TablesOf(bytes, start)) {}

  // What there is of a table; empty where there is none.
  std::string_view Find(uint32_t tag) const {
    const auto place = places_.find(tag);
    if (place == places_.end() || place->second.offset >= bytes_.size()) return {};
    return bytes_.substr(place->second.offset, place->second.length);
  }
  bool Has(uint32_t tag) const { return places_.contains(tag); }
  bool IsCut(uint32_t tag) const {
    const auto place = places_.find(tag);
    return place != places_.end() &&
           uint64_t{place->second.offset} + place->second.length > bytes_.size();
  }

 private:
  std::string_view bytes_;
  std::map<uint32_t, TablePlace> places_;
};

// The texts of a naming table ("name") by their numbers, those in English first.
class Names {
 public:
  explicit Names(std::string_view table) : table_(table) {
    const uint32_t count = std::min(Big(table, 2, 2), kMostNames);
    for (const bool english : {true, false}) {
      for (uint32_t i = 0; i < count; ++i) Read(6 + size_t{12} * i, english);
    }
  }

  // Adds the texts of a number that are not there yet.
  void Append(uint32_t number, std::vector<std::u16string>* texts) const {
    const auto [begin, end] = texts_.equal_range(number);
    for (auto at = begin; at != end; ++at) {
      const std::u16string& text = at->second.text;
      const bool known = std::find(texts->begin(), texts->end(), text) != texts->end();
      if (!known && !text.empty()) texts->push_back(text);
    }
  }
  std::vector<std::u16string> Of(std::initializer_list<uint32_t> numbers) const {
    std::vector<std::u16string> texts;
    for (const uint32_t number : numbers) Append(number, &texts);
    return texts;
  }
  std::vector<FamilyName> WithLanguages(std::initializer_list<uint32_t> numbers) const {
    std::vector<FamilyName> names;
    for (const uint32_t number : numbers) {
      const auto [begin, end] = texts_.equal_range(number);
      for (auto at = begin; at != end; ++at) {
        const bool known =
            std::ranges::find(names, at->second.text, &FamilyName::text) != names.end();
        if (!known && !at->second.text.empty()) names.push_back(at->second);
      }
    }
    return names;
  }

 private:
  static constexpr uint32_t kUnicodePlatform = 0, kMacPlatform = 1, kWindowsPlatform = 3;
  static constexpr uint32_t kPrimaryLanguage = 0x3FF, kEnglish = 9;

  void Read(size_t record, bool english) {
    const uint32_t platform = Big(table_, record, 2), language = Big(table_, record + 4, 2);
    const bool is_english =
        platform == kWindowsPlatform ? (language & kPrimaryLanguage) == kEnglish : language == 0;
    if (is_english != english) return;
    const size_t start = size_t{Big(table_, 4, 2)} + Big(table_, record + 10, 2);
    const size_t length = Big(table_, record + 8, 2);
    if (start >= table_.size()) return;
    const std::string_view bytes = table_.substr(start, length);
    std::u16string text;
    if (platform == kWindowsPlatform || platform == kUnicodePlatform) {
      for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
        text.push_back(static_cast<char16_t>(Big(bytes, i, 2)));
      }
    } else if (platform == kMacPlatform &&
               std::ranges::all_of(bytes, [](char c) { return c >= ' ' && c <= '~'; })) {
      text.assign(bytes.begin(), bytes.end());
    }
    std::string tag = is_english                     ? "en"
                      : platform == kWindowsPlatform ? LanguageTag(language & kPrimaryLanguage)
                                                     : "";
    texts_.emplace(Big(table_, record + 6, 2), FamilyName{std::move(text), std::move(tag)});
  }

  // Of the primary languages of Windows, those in which faces have names of their own.
  static std::string LanguageTag(uint32_t primary) {
    constexpr std::array<std::pair<uint32_t, const char*>, 6> kTags = {
        {{0x04, "zh"}, {0x07, "de"}, {0x0C, "fr"}, {0x11, "ja"}, {0x12, "ko"}, {0x19, "ru"}}};
    const auto* tag = std::ranges::find(kTags, primary, &std::pair<uint32_t, const char*>::first);
    return tag != kTags.end() ? tag->second : "";
  }

  std::string_view table_;
  std::multimap<uint32_t, FamilyName> texts_;
};

// Of the nine widths that the table "OS/2" knows, in percent.
int32_t WidthOf(uint32_t width_class) {
  constexpr std::array<int32_t, 10> kPercent = {100, 50, 63, 75, 87, 100, 113, 125, 150, 200};
  return width_class < kPercent.size() ? kPercent[width_class] : 100;
}

StyledFace DefaultStyle(const Tables& tables, const Names& names) {
  constexpr uint32_t kItalicBit = 0x1, kObliqueBit = 0x200, kMacBold = 0x1, kMacItalic = 0x2;
  StyledFace face;
  face.styles = names.Of({17, 2});
  if (const std::string_view os2 = tables.Find(Tag("OS/2")); os2.size() >= 64) {
    const auto weight = static_cast<int32_t>(Big(os2, 4, 2));
    face.weight = weight > 0 && weight <= 1000 ? weight : 400;
    face.width = WidthOf(Big(os2, 6, 2));
    face.slanted = (Big(os2, 62, 2) & (kItalicBit | kObliqueBit)) != 0;
  } else {
    const uint32_t style = Big(tables.Find(Tag("head")), 44, 2);
    face.weight = (style & kMacBold) != 0 ? 700 : 400;
    face.slanted = (style & kMacItalic) != 0;
  }
  return face;
}

// A number of 16.16 bits, whole part.
int32_t FixedWhole(std::string_view bytes, size_t at) {
  return static_cast<int16_t>(Big(bytes, at, 2));
}

struct AxisReach {
  int32_t least = 0, most = 0;
};

// The axes of the table "fvar", in whole numbers.
std::map<uint32_t, AxisReach> AxesOf(std::string_view fvar) {
  std::map<uint32_t, AxisReach> axes;
  const size_t first = Big(fvar, 4, 2), size = Big(fvar, 10, 2);
  for (uint32_t i = 0; i < Big(fvar, 8, 2); ++i) {
    const size_t axis = first + size_t{i} * size;
    if (axis + 16 > fvar.size()) break;
    axes[Big(fvar, axis, 4)] = {FixedWhole(fvar, axis + 4), FixedWhole(fvar, axis + 12)};
  }
  return axes;
}

// The named instances of the table "fvar".
void AppendInstances(std::string_view fvar, const Names& names, const FontFileFace& font,
                     std::vector<FontFileFace>* faces) {
  const size_t axes = Big(fvar, 4, 2);
  const uint32_t axis_count = Big(fvar, 8, 2), axis_size = Big(fvar, 10, 2);
  const uint32_t count = std::min(Big(fvar, 12, 2), kMostInstances), size = Big(fvar, 14, 2);
  const size_t first = axes + size_t{axis_count} * axis_size;
  for (uint32_t i = 0; i < count; ++i) {
    const size_t instance = first + size_t{i} * size;
    if (instance + 4 + size_t{4} * axis_count > fvar.size()) break;
    FontFileFace face = font;
    face.instance = i + 1;
    face.full_names.clear();
    face.style.styles.clear();
    names.Append(Big(fvar, instance, 2), &face.style.styles);
    for (uint32_t axis = 0; axis < axis_count; ++axis) {
      const uint32_t tag = Big(fvar, axes + size_t{axis} * axis_size, 4);
      const int32_t place = FixedWhole(fvar, instance + 4 + size_t{4} * axis);
      if (tag == Tag("wght")) face.style.weight = place;
      if (tag == Tag("wdth")) face.style.width = place;
      if (tag == Tag("slnt") || tag == Tag("ital")) face.style.slanted |= place != 0;
    }
    for (const std::u16string& family : face.families) {
      for (const std::u16string& style : face.style.styles) {
        face.full_names.push_back(std::u16string(family).append(u" ").append(style));
      }
    }
    faces->push_back(std::move(face));
  }
}

FontFileFace NamesOf(const Names& names) {
  FontFileFace face;
  face.families = names.Of({16, 1});
  face.family_names = names.WithLanguages({16, 1});
  face.full_names = names.Of({4, 6});
  return face;
}

bool HasName(const std::vector<std::u16string>& names, std::u16string_view wanted) {
  return std::ranges::any_of(
      names, [&](const std::u16string& name) { return EqualWithoutCase(name, wanted); });
}

std::u16string Quoted(std::u16string_view text) {
  return u"\"" + std::u16string(text) + u"\"";
}

std::u16string NumberText(uint32_t number) {
  const std::string digits = std::to_string(number);
  return {digits.begin(), digits.end()};
}

std::u16string FamilyOf(const FontFileFace& face) {
  return face.families.empty() ? std::u16string() : face.families.front();
}

// "0 "Family Style", 1 ..." of a collection.
std::u16string FontList(const std::vector<FontFileFace>& faces) {
  std::u16string text;
  for (const FontFileFace& face : faces) {
    if (face.instance > 0) continue;
    const std::u16string style = face.style.styles.empty() ? u"" : u" " + face.style.styles.front();
    text += (text.empty() ? u"" : u", ") + NumberText(face.index) + u" " +
            Quoted(FamilyOf(face) + style);
  }
  return text;
}

std::u16string WhatItIsInstead(std::string_view bytes) {
  if (bytes.starts_with("wOFF") || bytes.starts_with("wOF2")) {
    return u"is packed for the web (WOFF), and has to be unpacked first";
  }
  if (bytes.starts_with("%!") || bytes.starts_with("\x80\x01")) {
    return u"is a Type 1 font, whose outlines are not read";
  }
  return u"is no font file (TrueType, OpenType or a collection of them)";
}

// The faces of a file that the request's index, family or full name may mean.
Status Candidates(const FaceRequest& request, std::u16string_view name,
                  std::vector<FontFileFace>* faces) {
  const std::vector<FontFileFace> all = *faces;
  if (request.index) {
    std::erase_if(*faces, [&](const FontFileFace& face) { return face.index != *request.index; });
    if (faces->empty()) {
      return Status::Error(
          Failure::kNotFound, std::u16string(name),
          u"has no font " + NumberText(*request.index) + u"; it has " + FontList(all));
    }
  }
  if (!request.family.empty()) {
    const bool full = std::ranges::any_of(*faces, [&](const FontFileFace& face) {
      return HasName(face.full_names, request.family) && !HasName(face.families, request.family);
    });
    std::erase_if(*faces, [&](const FontFileFace& face) {
      return !HasName(full ? face.full_names : face.families, request.family);
    });
    if (faces->empty()) {
      return Status::Error(Failure::kNotFound, std::u16string(name),
                           u"has no face " + Quoted(request.family) + u"; it has " + FontList(all));
    }
  } else if (!request.index) {
    const std::u16string first = FamilyOf(faces->front());
    std::erase_if(*faces, [&](const FontFileFace& face) { return FamilyOf(face) != first; });
  }
  return Status::Ok();
}

}  // namespace

std::vector<FontFileFace> FacesIn(std::string_view bytes) {
  std::vector<FontFileFace> faces;
  uint32_t index = 0;
  for (const size_t start : DirectoriesIn(bytes)) {
    const uint32_t number = index++;
    if (!IsDirectory(bytes, start)) continue;
    const Tables tables(bytes, start);
    const Names names(tables.Find(Tag("name")));
    FontFileFace face = NamesOf(names);
    face.index = number;
    face.style = DefaultStyle(tables, names);
    faces.push_back(face);
    AppendInstances(tables.Find(Tag("fvar")), names, face, &faces);
  }
  return faces;
}

FontFileFace NamesIn(std::string_view table) {
  return NamesOf(Names(table));
}

void Describe(const FaceRequest& request, std::span<const StyledFace> styles,
              const StyleChoice& choice, FontData* data) {
  const StyledFace& face = styles[choice.face];
  data->variations = request.variations;
  data->features = request.features;
  data->style = face.styles.empty() ? u"" : face.styles.front();
  data->weight = face.weight;
  data->width = face.width;
  data->slanted = face.slanted;
  data->make_bold = choice.make_bold;
  data->make_slanted = choice.make_slanted;
}

void TakeStyleFromAxes(std::u16string_view style, FontData* data) {
  if (!data->make_bold && !data->make_slanted) return;
  const std::vector<size_t> starts = DirectoriesIn(data->file->bytes());
  if (data->index >= starts.size()) return;
  const Tables tables(data->file->bytes(), starts[data->index]);
  const std::map<uint32_t, AxisReach> axes = AxesOf(tables.Find(Tag("fvar")));
  const auto reaches = [&](uint32_t tag, int32_t place) {
    const auto axis = axes.find(tag);
    return axis != axes.end() && axis->second.least <= place && place <= axis->second.most;
  };
  std::string places;
  if (data->make_bold && reaches(Tag("wght"), kBoldWeight)) {
    places = "wght=" + std::to_string(kBoldWeight) + ",";
    data->make_bold = false;
    data->bold_by_axes = true;
    data->weight = kBoldWeight;
  }
  const auto slant = axes.find(Tag("slnt"));
  const bool leans = slant != axes.end() && slant->second.least < 0;
  if (data->make_slanted && (leans || reaches(Tag("ital"), 1))) {
    constexpr int32_t kUsualSlant = -12;
    places += reaches(Tag("ital"), 1)
                  ? "ital=1,"
                  : "slnt=" + std::to_string(std::max(slant->second.least, kUsualSlant)) + ",";
    data->make_slanted = false;
    data->slanted_by_axes = true;
    data->slanted = true;
  }
  if (places.empty()) return;
  if (!data->make_bold && !data->make_slanted) data->style = style;
  if (data->variations.empty()) places.pop_back();
  data->variations.insert(0, places);
}

Status NoSuchStyle(std::u16string_view family, std::u16string_view style,
                   std::span<const StyledFace> styles) {
  return Status::Error(
      Failure::kNotFound, u"style",
      Quoted(family) + u" has no " + Quoted(style) + u"; it has " + StyleList(styles));
}

Status CheckWhole(const FontData& data) {
  const std::string_view bytes = data.file->bytes();
  const std::vector<size_t> starts = DirectoriesIn(bytes);
  const auto refuse = [&](std::u16string why) {
    return Status::Error(Failure::kOther, data.file->name(), std::move(why));
  };
  if (data.index >= starts.size() || !IsDirectory(bytes, starts[data.index])) {
    return refuse(WhatItIsInstead(bytes));
  }
  const Tables tables(bytes, starts[data.index]);
  // What shaping and outlines read.
  constexpr std::array<const char*, 25> kRead = {
      "head", "hhea", "hmtx", "maxp", "cmap", "loca", "glyf", "CFF ", "CFF2",
      "vhea", "vmtx", "VORG", "GDEF", "GSUB", "GPOS", "kern", "OS/2", "name",
      "fvar", "gvar", "avar", "HVAR", "MVAR", "VVAR", "morx"};
  for (const char* table : kRead) {
    if (tables.IsCut(Big(table, 0, 4))) {
      return refuse(u"ends before its table " + Quoted(std::u16string(table, table + 4)) +
                    u" does");
    }
  }
  const bool outlines =
      tables.Has(Tag("glyf")) || tables.Has(Tag("CFF ")) || tables.Has(Tag("CFF2"));
  if (!outlines) return refuse(u"holds no outlines");
  if (!tables.Has(Tag("cmap"))) return refuse(u"does not say which character a glyph stands for");
  if (!tables.Has(Tag("hmtx"))) return refuse(u"does not say how wide its glyphs are");
  return Status::Ok();
}

Status FindInFile(const FaceRequest& request, FontData* data) {
  FontData found;
  if (Status opened = OpenFontBytes(request.file, &found.file); !opened.ok()) return opened;
  const std::u16string name = found.file->name();
  std::vector<FontFileFace> faces = FacesIn(found.file->bytes());
  if (faces.empty()) {
    return Status::Error(Failure::kOther, name, WhatItIsInstead(found.file->bytes()));
  }
  if (Status chosen = Candidates(request, name, &faces); !chosen.ok()) return chosen;
  // The font as its default stands before its instances, so that it wins among equals.
  if (!request.style.empty()) {
    std::stable_sort(faces.begin(), faces.end(), [](const FontFileFace& a, const FontFileFace& b) {
      const auto key = [](const StyledFace& face) {
        return std::tuple(face.slanted, std::abs(face.width - 100), std::abs(face.weight - 400));
      };
      return key(a.style) < key(b.style);
    });
  }
  std::vector<StyledFace> styles;
  styles.reserve(faces.size());
  for (const FontFileFace& face : faces) styles.push_back(face.style);
  const auto choice = ChooseStyle(request.style, styles);
  if (!choice) return NoSuchStyle(FamilyOf(faces.front()), request.style, styles);
  const FontFileFace& face = faces[choice->face];
  found.index = face.index;
  found.instance = face.instance;
  found.family = FamilyOf(face);
  found.path = request.file;
  Describe(request, styles, *choice, &found);
  TakeStyleFromAxes(request.style, &found);
  if (Status whole = CheckWhole(found); !whole.ok()) return whole;
  *data = std::move(found);
  return Status::Ok();
}

}  // namespace kerno
