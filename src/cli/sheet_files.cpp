#include "cli/sheet_files.h"

#include <filesystem>
#include <utility>
#include <vector>

#include "app/series_names.h"
#include "base/text.h"
#include "cli/arguments.h"
#include "cli/console.h"
#include "export/drawing_formats.h"
#include "platform/folder_path.h"

namespace kerno {

bool SheetFiles::Check() {
  // The unit scales all lengths alike.
  if (!group_.Read(LengthUnit::kMillimetre)) return false;
  if (plan_.NamesUseRows()) {
    ReportError("-o", "a sheet holds many rows: names of files take {sheet} alone");
    return false;
  }
  if (plan_.TextsUseSheet()) {
    ReportError("{sheet}", "is known only in names of files");
    return false;
  }
  std::vector<std::string> names;
  if (!plan_.FillNames({.sheet = 1}, &names)) return false;
  for (size_t i = 0; i < names.size(); ++i) {
    for (size_t j = 0; j < i; ++j) {
      if (PlainName(names[i]) != PlainName(names[j])) continue;
      ReportError(names[i], "is given twice");
      return false;
    }
  }
  return true;
}

bool SheetFiles::Add(Drawing sign, const SheetStyle& style, uint64_t row) {
  if (!maker_) {
    auto options = group_.Read(sign.unit);
    if (!options) return false;
    if (style.curves == CurveForm::kLines) options->chords = style.tolerance;
    style_ = style;
    unit_ = sign.unit;
    maker_.emplace(*options, sign.unit,
                   [this](const Drawing& sheet, size_t number) { Take(sheet, number); });
  }
  if (sign.unit != unit_) {
    ReportError("--unit", "is another than that of the sheet");
    return false;
  }
  const Status set = maker_->Add(std::move(sign), static_cast<int64_t>(row), group_.copies());
  if (!set.ok()) ReportError(set);
  return set.ok();
}

void SheetFiles::Finish() {
  if (maker_) {
    maker_->Finish();
    if (const size_t meet = maker_->numbers_in_texts(); meet > 0) {
      ReportWarning("--numbers",
                    std::to_string(meet) + " reach into the text of their sign (--number-height)");
    }
  }
  if (first_) Write(*std::exchange(first_, std::nullopt), 1);
}

void SheetFiles::Take(const Drawing& sheet, size_t number) {
  if (counts_.failed) return;
  if (plan_.NamesUseSheet()) {
    Write(sheet, number);
  } else if (number == 1) {
    first_ = sheet;
  } else {
    first_.reset();
    counts_.failed = true;
    ReportError("-o",
                "the rows fill more than one sheet: name files by {sheet}; nothing is written");
  }
}

void SheetFiles::Write(const Drawing& sheet, size_t number) {
  std::vector<std::string> names;
  if (!plan_.FillNames({.sheet = number}, &names)) {
    counts_.failed = true;
    return;
  }
  ++counts_.sheets;
  json_ += "{\"sheet\": " + std::to_string(number) + ", \"files\": [";
  bool is_first = true;
  for (size_t i = 0; i < names.size(); ++i) {
    if (!WriteFile(sheet, *outputs_.outputs()[i].format, names[i])) continue;
    if (!is_first) json_ += ", ";
    is_first = false;
    AppendJsonString(&json_, Utf8ToUtf16Lossy(names[i]));
  }
  json_ += "]}\n";
}

// Whether the file was written now.
bool SheetFiles::WriteFile(const Drawing& sheet, const Format& format, const std::string& name) {
  const std::filesystem::path path = PathArgument(name);
  if (existing_ != ExistingFiles::kReplace && FactsOfPath(path).kind != PathKind::kMissing) {
    if (existing_ == ExistingFiles::kResume) {
      ++counts_.done;
    } else if (++counts_.kept == 1) {
      counts_.first_kept = name;
    }
    return false;
  }
  Status status = folders_.MakeFor(path);
  if (status.ok()) status = WriteDrawing(sheet, style_.style, style_.tolerance, format, path);
  if (!status.ok()) {
    ReportError(status);
    counts_.failed = true;
    return false;
  }
  ++counts_.files;
  const PathFacts facts = FactsOfPath(path);
  counts_.bytes += facts.kind == PathKind::kFile ? facts.size : 0;
  return true;
}

}  // namespace kerno
