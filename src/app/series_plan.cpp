#include "app/series_plan.h"

#include <algorithm>

#include "app/output_name.h"
#include "app/reports.h"
#include "app/series_names.h"
#include "base/text.h"

namespace kerno {
namespace {

bool IsOk(const Status& status) {
  if (!status.ok()) ReportError(status);
  return status.ok();
}

// A value that is right whatever the others are: the default where it is one.
std::string SampleOf(std::string_view option) {
  constexpr std::pair<std::string_view, const char*> kSamples[] = {
      {"--font-file", "sample"}, {"--fallback", "sample"}, {"--stroke-font", "sample"},
      {"--language", "en"},      {"--cap-height", "10mm"}, {"--em", "10mm"},
      {"--fit", "10x10mm"}};
  for (const auto& [name, sample] : kSamples) {
    if (name == option) return sample;
  }
  std::string sample;
  CutTexts().ForEachText([&](const char* name, std::string* value) {
    if (name == option) sample = *value;
  });
  return sample;
}

}  // namespace

bool SeriesPlan::Read(const CutTexts& texts, const OutputList& outputs, std::string_view text,
                      Escapes escapes, const std::vector<std::string>& columns) {
  if (!IsOk(RowTemplate::Read(text, columns, escapes, u"text", &text_))) return false;
  for (const OutputFile& output : outputs) {
    if (output.name == "-") {
      ReportError("-o -", "takes one drawing; a series writes a file for each row");
      return false;
    }
    RowTemplate& name = names_.emplace_back();
    if (!IsOk(RowTemplate::Read(output.name, columns, Escapes::kNone, u"-o", &name))) return false;
  }
  CutTexts copy = texts;
  size_t place = 0;
  bool is_read = true;
  copy.ForEachText([&](const char* option, std::string* value) {
    RowTemplate filled;
    const bool has_brace = value->find_first_of("{}") != value->npos;
    if (is_read && has_brace) {
      is_read = IsOk(
          RowTemplate::Read(*value, columns, Escapes::kNone, Utf8ToUtf16Lossy(option), &filled));
      values_.push_back({place, option, std::move(filled)});
    }
    ++place;
  });
  return is_read;
}

template <class Visit>
bool SeriesPlan::Any(const Visit& visit) const {
  return visit(text_) || std::ranges::any_of(names_, visit) ||
         std::ranges::any_of(values_, [&](const Value& value) { return visit(value.text); });
}

bool SeriesPlan::NamesUseSheet() const {
  return std::ranges::any_of(names_, &RowTemplate::UsesSheet);
}

bool SeriesPlan::NamesUseRows() const {
  return std::ranges::any_of(names_, &RowTemplate::UsesRow);
}

bool SeriesPlan::TextsUseSheet() const {
  return text_.UsesSheet() ||
         std::ranges::any_of(values_, [](const Value& value) { return value.text.UsesSheet(); });
}

std::vector<std::string> SeriesPlan::NumbersUsed() const {
  std::vector<std::string> used;
  for (const char* name : {"row", "n"}) {
    if (Any([&](const RowTemplate& t) { return t.UsesNumber(name); })) used.emplace_back(name);
  }
  return used;
}

bool SeriesPlan::FillText(const RowValues& values, std::u16string* text) const {
  std::string filled;
  if (!IsOk(text_.Fill(values, &filled))) return false;
  *text = Utf8ToUtf16Lossy(filled);
  if (text->empty()) ReportError("text", "is empty");
  return !text->empty();
}

bool SeriesPlan::FillNames(const RowValues& values, std::vector<std::string>* names) const {
  names->resize(names_.size());
  for (size_t i = 0; i < names_.size(); ++i) {
    if (!IsOk(names_[i].FillName(values, &(*names)[i]))) return false;
  }
  return true;
}

void SeriesPlan::FillSamples(CutTexts* texts) const {
  size_t place = 0;
  auto next = values_.begin();
  texts->ForEachText([&](const char* option, std::string* value) {
    if (next != values_.end() && next->place == place) {
      *value = SampleOf(option);
      ++next;
    }
    ++place;
  });
}

bool SeriesPlan::FacesVary() const {
  constexpr std::string_view kOfFaces[] = {"--face",       "--style",    "--font-file",
                                           "--variation",  "--features", "--fallback",
                                           "--stroke-font"};
  return std::ranges::any_of(values_, [&](const Value& value) {
    return std::ranges::find(kOfFaces, value.option) != std::end(kOfFaces);
  });
}

bool SeriesPlan::NamesDifferByNumber(uint64_t last) const {
  SeriesRow row;
  row.number = last;  // the longest
  std::vector<std::u16string> extensions;
  for (const RowTemplate& name : names_) {
    std::string filled;
    if (!(name.UsesNumber("row") || name.UsesNumber("n"))) return false;
    if (!name.FillName({.row = &row}, &filled).ok()) return false;
    // Levels that leave others, or that are shortened, may leave the number out.
    if (filled.size() > kLongestName || filled.find("..") != filled.npos) return false;
    std::u16string extension = AsciiLower(Extension(Utf8ToUtf16Lossy(filled)));
    if (extension.empty() || std::ranges::find(extensions, extension) != extensions.end()) {
      return names_.size() == 1;
    }
    extensions.push_back(std::move(extension));
  }
  return true;
}

bool SeriesPlan::FillOptions(const RowValues& values, CutTexts* texts) const {
  size_t place = 0;
  auto next = values_.begin();
  bool is_filled = true;
  texts->ForEachText([&](const char*, std::string* value) {
    if (next != values_.end() && next->place == place) {
      is_filled = is_filled && IsOk(next->text.Fill(values, value));
      ++next;
    }
    ++place;
  });
  return is_filled;
}

}  // namespace kerno
