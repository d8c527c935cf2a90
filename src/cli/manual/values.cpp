#include "cli/manual/values.h"

#include <algorithm>
#include <functional>
#include <map>

#include "app/cut_choices.h"
#include "app/stroke_fonts.h"
#include "app/text_coding.h"
#include "base/settings_table.h"
#include "base/text.h"
#include "cli/choices.h"
#include "export/formats.h"

namespace kerno {
namespace {

using Kind = Values::Kind;
using Table = std::map<std::string, Values, std::less<>>;

std::vector<std::string> FormatWords() {
  std::vector<std::string> words;
  for (const Format& format : Formats()) words.emplace_back(format.extension);
  return words;
}

std::vector<std::string> StrokeFontWords() {
  std::vector<std::string> words;
  for (const std::u16string_view ending : kStrokeFontEndings) words.push_back(Utf16ToUtf8(ending));
  return words;
}

std::vector<std::string> CodingWords() {
  std::vector<std::string> words(1);
  for (const char c : CodingNames("|")) {
    if (c == '|') {
      words.emplace_back();
    } else {
      words.back().push_back(c);
    }
  }
  return words;
}

// Those for which fonts hold letters of their own, and some that are asked for often: others do,
// too.
std::vector<std::string> LanguageWords() {
  return {"ar", "az", "bg", "ca", "cs", "de",      "el",      "en", "es", "fa",
          "fr", "he", "hi", "hu", "it", "ja",      "ko",      "lt", "mk", "mr",
          "nl", "pl", "ro", "ru", "sk", "sr",      "sr-Latn", "sv", "th", "tr",
          "uk", "ur", "vi", "yi", "zh", "zh-Hans", "zh-Hant"};
}

template <class... Tables>
void AddChoices(Table* table, const Tables&... choices) {
  (table->emplace(choices.option, Values{Kind::kWords, ToldWords(choices)}), ...);
}

Table MakeTable() {
  Table table = {
      {"--face", {Kind::kFace, {}}},
      {"--fallback", {Kind::kFace, {}}},
      {"--style", {Kind::kStyle, {}}},
      {"--features", {Kind::kFeatures, {}}},
      {"--variation", {Kind::kAxes, {}}},
      {"--language", {Kind::kWords, LanguageWords()}},
      {"--font-file", {Kind::kFile, {"ttf", "otf", "ttc", "otc"}}},
      {"--stroke-font", {Kind::kStrokeFont, StrokeFontWords()}},
      {"--encoding", {Kind::kWords, CodingWords()}},
      {"-o", {Kind::kOutput, FormatWords()}},
      {"--format", {Kind::kWords, FormatWords()}},
      {"--ipx", {Kind::kFile, {"ipx"}}},
      {"--text-file", {Kind::kFile, {}}},
      {"--data", {Kind::kFile, {"csv", "tsv", "txt"}}},
      {"--lines", {Kind::kFile, {}}},
      {"--failed", {Kind::kFile, {}}},
      {"FILE", {Kind::kFile, {}}},
      {"FOLDER", {Kind::kFolder, {}}},
      {"SECTION", {Kind::kSection, {}}},
      {"KEY", {Kind::kKey, {}}},
      {"COMMAND", {Kind::kCommand, {}}},
  };
  AddChoices(&table, kDirectionChoices, kUnitChoices, kAlignChoices, kAnchorChoices, kCurveChoices,
             kWeldChoices, kOrderChoices, kDxfChoices, kLayersChoices, kSvgStyleChoices);
  AddChoices(&table, kLineEndChoices, kPitchChoices, kElementChoices, kDxfLayerChoices, kAciChoices,
             kUnitsChoices, kSeparatorChoices);
  return table;
}

}  // namespace

Values ValuesOf(std::string_view name) {
  static const Table table = MakeTable();
  const auto found = table.find(name);
  return found == table.end() ? Values{} : found->second;
}

std::vector<SettingNames> SettingSections() {
  std::vector<SettingNames> sections;
  for (const Setting& row : KnownSettings()) {
    const SettingText known = Describe(row);
    const std::string section = Utf16ToUtf8(known.section);
    auto place = std::ranges::find(sections, section, &SettingNames::section);
    if (place == sections.end()) place = sections.insert(place, {section, {}});
    place->keys.push_back(Utf16ToUtf8(known.key));
  }
  return sections;
}

}  // namespace kerno
