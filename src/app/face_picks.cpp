// A chosen face as options of "kerno cut", and back.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <system_error>
#include <tuple>
#include <utility>

#include "app/face_catalogue.h"
#include "app/face_texts.h"
#include "base/number_text.h"
#include "base/text.h"
#include "platform/fold_case.h"

namespace kerno {
namespace {

// The place of an axis in "wght=650,slnt=-8", the last one of several.
std::optional<double> PlaceIn(std::string_view variations, std::string_view tag) {
  std::optional<double> place;
  while (!variations.empty()) {
    const size_t end = std::min(variations.find(','), variations.size());
    std::string_view part = variations.substr(0, end);
    variations.remove_prefix(std::min(end + 1, variations.size()));
    const size_t sign = part.find('=');
    if (sign == part.npos || part.substr(0, sign) != tag) continue;
    part.remove_prefix(sign + 1);
    double value = 0;
    const auto read = std::from_chars(part.data(), part.data() + part.size(), value);
    if (read.ec == std::errc() && std::isfinite(value)) place = value;
  }
  return place;
}

std::filesystem::path WholePath(const std::filesystem::path& file) {
  std::error_code error;
  const std::filesystem::path whole = std::filesystem::absolute(file, error);
  return (error ? file : whole).lexically_normal();
}

bool IsFileOf(const FaceEntry& entry, std::u16string_view name) {
  return EqualWithoutCase(PathText(entry.file.filename()), name);
}

}  // namespace

// The regular style is what a family has without one.
FaceRequest FaceCatalogue::StyleRequest(const Item& item, const FaceStyle& style) const {
  if (item.entry.kind != FaceKind::kFile) {
    return {.family = item.entry.given, .style = style.own_name};
  }
  FaceRequest request = {.style = style.own_name, .file = item.entry.file};
  const bool collection = std::ranges::any_of(
      *item.styles, [&](const FaceStyle& other) { return other.index != style.index; });
  if (collection || style.index != 0) request.index = style.index;
  return request;
}

FaceRequest FaceCatalogue::RequestOf(const FacePick& pick) {
  const FaceStyle& style = StylesOf(pick.entry)[pick.style];
  const Item& item = items_[pick.entry];
  FaceRequest request = StyleRequest(item, style);
  if (pick.style == item.regular) request.style.clear();
  if (!pick.places.empty()) request.variations = VariationsOf(pick);
  return request;
}

// The places that differ from those of the style.
std::string FaceCatalogue::VariationsOf(const FacePick& pick) {
  const std::vector<FaceAxis>& axes = AxesOf(pick.entry, pick.style);
  std::string variations;
  for (size_t i = 0; i < std::min(axes.size(), pick.places.size()); ++i) {
    const FontAxis& axis = axes[i].axis;
    const double place = std::clamp(pick.places[i], axis.least, axis.most);
    if (place == axes[i].place) continue;
    variations += (variations.empty() ? "" : ",") + axis.tag + "=";
    AppendShortest(&variations, place);
  }
  return variations;
}

std::array<FaceOption, 5> FaceCatalogue::OptionsOf(const FacePick& pick) {
  std::array<FaceOption, 5> options = {{{"--face", u""},
                                        {"--style", u""},
                                        {"--variation", u""},
                                        {"--font-file", u""},
                                        {"--stroke-font", u""}}};
  auto& [face, style, variation, file, strokes] = options;
  const FaceEntry& entry = items_[pick.entry].entry;
  if (entry.kind == FaceKind::kStrokes) {
    strokes.second = entry.given;
    return options;
  }
  const FaceRequest request = RequestOf(pick);
  face.second = request.family;
  style.second = request.style;
  variation.second = Utf8ToUtf16Lossy(request.variations);
  file.second = PathText(request.file);
  if (request.index) file.second += u"#" + Utf8ToUtf16Lossy(std::to_string(*request.index));
  return options;
}

std::optional<size_t> FaceCatalogue::FindFile(const std::filesystem::path& file) const {
  const std::filesystem::path whole = WholePath(file);
  const auto item = std::ranges::find_if(items_, [&](const Item& known) {
    return !known.entry.file.empty() && WholePath(known.entry.file) == whole;
  });
  if (item == items_.end()) return std::nullopt;
  return static_cast<size_t>(item - items_.begin());
}

// By the name that the system is asked by, or else by any other.
std::optional<size_t> FaceCatalogue::FindFamily(std::u16string_view name) const {
  std::optional<size_t> by_other_name;
  for (size_t i = 0; i < items_.size(); ++i) {
    const FaceEntry& entry = items_[i].entry;
    if (entry.kind != FaceKind::kOutlines && entry.kind != FaceKind::kSymbols) continue;
    if (EqualWithoutCase(entry.given, name)) return i;
    const bool named = std::ranges::any_of(
        entry.names, [&](const FamilyName& known) { return EqualWithoutCase(known.text, name); });
    if (named && !by_other_name) by_other_name = i;
  }
  return by_other_name;
}

// Of a font of a collection where an index says which.
size_t FaceCatalogue::FindStyle(size_t entry, std::optional<uint32_t> index,
                                std::u16string_view style) {
  const std::vector<FaceStyle>& styles = StylesOf(entry);
  const size_t regular = items_[entry].regular;
  std::vector<size_t>
      likely;  // the styles that the font has, the one most like a normal face first
  for (size_t i = 0; i < styles.size(); ++i) {
    if (!styles[i].made && (!index || styles[i].index == *index)) likely.push_back(i);
  }
  if (likely.empty()) return regular;
  std::ranges::stable_sort(likely, {}, [&](size_t i) {
    return std::tuple(i != regular, styles[i].slanted, std::abs(styles[i].width - 100),
                      std::abs(styles[i].weight - 400));
  });
  std::vector<StyledFace> faces;
  for (const size_t i : likely) {
    faces.push_back({{styles[i].own_name}, styles[i].weight, styles[i].width, styles[i].slanted});
  }
  const auto choice = ChooseStyle(style, faces);
  if (!choice) return likely.front();
  for (size_t i = 0; (choice->make_bold || choice->make_slanted) && i < styles.size(); ++i) {
    const bool bold = styles[i].name.find(u"Bold") != std::u16string::npos;
    const bool slanted = styles[i].name.find(u"Oblique") != std::u16string::npos;
    if (styles[i].made && bold == choice->make_bold && slanted == choice->make_slanted) return i;
  }
  return likely[choice->face];
}

std::optional<FacePick> FaceCatalogue::PickStrokes(std::u16string_view name) {
  for (size_t i = 0; i < items_.size(); ++i) {
    const FaceEntry& entry = items_[i].entry;
    if (entry.kind != FaceKind::kStrokes) continue;
    if (EqualWithoutCase(entry.given, name) || IsFileOf(entry, name)) return FacePick{i, 0, {}};
  }
  size_t entry = 0;
  if (!AddFile(TextPath(name), &entry).ok()) return std::nullopt;
  return FacePick{entry, 0, {}};
}

std::optional<FacePick> FaceCatalogue::PickFile(std::u16string_view file,
                                                std::u16string_view style) {
  FaceRequest request;
  size_t entry = 0;
  if (!ReadFontFile(Utf16ToUtf8(file), &request) || !AddFile(request.file, &entry).ok()) {
    return std::nullopt;
  }
  return FacePick{entry, FindStyle(entry, request.index, style), {}};
}

std::optional<FacePick> FaceCatalogue::PickFamily(const std::u16string& name,
                                                  std::u16string style) {
  auto entry = name.empty() ? std::nullopt : FindFamily(name);
  if (!entry) {  // the system's own choice, or the full name of a face
    FontData data;
    if (!FindFontData({.family = name, .style = style}, &data).ok()) return std::nullopt;
    entry = FindFamily(data.family);
    if (!entry) return std::nullopt;
    if (style.empty() && !name.empty()) style = data.style;
  }
  return FacePick{*entry, FindStyle(*entry, std::nullopt, style), {}};
}

std::optional<FacePick> FaceCatalogue::PickOf(std::span<const FaceOption> options) {
  const auto value = [&](std::string_view name) {
    const auto option = std::ranges::find(options, name, &FaceOption::first);
    return option != options.end() ? option->second : std::u16string();
  };
  if (const std::u16string strokes = value("--stroke-font"); !strokes.empty()) {
    return PickStrokes(strokes);
  }
  const std::u16string file = value("--font-file");
  auto pick = file.empty() ? PickFamily(value("--face"), value("--style"))
                           : PickFile(file, value("--style"));
  const std::string variations = Utf16ToUtf8(value("--variation"));
  if (!pick || variations.empty()) return pick;
  for (const FaceAxis& axis : AxesOf(pick->entry, pick->style)) {
    pick->places.push_back(PlaceIn(variations, axis.axis.tag).value_or(axis.place));
  }
  return pick;
}

}  // namespace kerno
