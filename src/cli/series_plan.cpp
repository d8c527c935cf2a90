#include "cli/series_plan.h"

#include <algorithm>

#include "app/series_names.h"
#include "base/text.h"
#include "cli/console.h"

namespace kerno {
namespace {

bool IsOk(const Status& status) {
  if (!status.ok()) ReportError(status);
  return status.ok();
}

}  // namespace

bool SeriesPlan::Read(const CutOptions& options, std::string_view text, Escapes escapes,
                      const std::vector<std::string>& columns) {
  if (!IsOk(RowTemplate::Read(text, columns, escapes, u"text", &text_))) return false;
  for (const OutputFiles::Output& output : options.outputs().outputs()) {
    if (output.name == "-") {
      ReportError("-o -", "takes one drawing; a series writes a file for each row");
      return false;
    }
    RowTemplate& name = names_.emplace_back();
    if (!IsOk(RowTemplate::Read(output.name, columns, Escapes::kNone, u"-o", &name))) return false;
  }
  CutOptions copy = options;
  size_t place = 0;
  bool is_read = true;
  copy.ForEachText([&](const char* option, std::string* value) {
    RowTemplate filled;
    const bool has_brace = value->find_first_of("{}") != value->npos;
    if (is_read && has_brace) {
      is_read = IsOk(
          RowTemplate::Read(*value, columns, Escapes::kNone, Utf8ToUtf16Lossy(option), &filled));
      values_.emplace_back(place, std::move(filled));
    }
    ++place;
  });
  return is_read;
}

template <class Visit>
bool SeriesPlan::Any(const Visit& visit) const {
  return visit(text_) || std::ranges::any_of(names_, visit) ||
         std::ranges::any_of(values_, [&](const auto& value) { return visit(value.second); });
}

bool SeriesPlan::NamesUseSheet() const {
  return std::ranges::any_of(names_, &RowTemplate::UsesSheet);
}

bool SeriesPlan::NamesUseRows() const {
  return std::ranges::any_of(names_, &RowTemplate::UsesRow);
}

bool SeriesPlan::TextsUseSheet() const {
  return text_.UsesSheet() ||
         std::ranges::any_of(values_, [](const auto& value) { return value.second.UsesSheet(); });
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

bool SeriesPlan::FillOptions(const RowValues& values, CutOptions* options) const {
  size_t place = 0;
  auto next = values_.begin();
  bool is_filled = true;
  options->ForEachText([&](const char*, std::string* value) {
    if (next != values_.end() && next->first == place) {
      is_filled = is_filled && IsOk(next->second.Fill(values, value));
      ++next;
    }
    ++place;
  });
  return is_filled;
}

}  // namespace kerno
