#include "app/sheet_files.h"

#include <filesystem>
#include <utility>
#include <vector>

#include "app/option_values.h"
#include "app/reports.h"
#include "app/series_names.h"
#include "export/drawing_formats.h"
#include "platform/folder_path.h"

namespace kerno {

bool SheetFiles::ReadOptions(LengthUnit unit, SheetOptions* options) {
  return ReadSheets(*job_.sheets, job_.texts.given, unit, options, &copies_);
}

bool SheetFiles::Check() {
  // The unit scales all lengths alike.
  SheetOptions options;
  if (!ReadOptions(LengthUnit::kMillimetre, &options)) return false;
  has_numbers_ = options.number_height > 0;
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

bool SheetFiles::Add(Drawing sign, const SheetStyle& style, uint64_t row, int64_t mark) {
  if (!maker_) {
    SheetOptions options;
    if (!ReadOptions(sign.unit, &options)) return false;
    if (style.curves == CurveForm::kLines) options.chords = style.tolerance;
    style_ = style;
    unit_ = sign.unit;
    maker_.emplace(options, sign.unit,
                   [this](const Drawing& sheet, size_t number) { Take(sheet, number); });
  }
  if (sign.unit != unit_) {
    ReportError("--unit", "is another than that of the sheet");
    return false;
  }
  open_.push_back({row, {}});
  const Status set = maker_->Add(std::move(sign), mark, copies_);
  if (set.ok()) return true;
  open_.pop_back();  // no copy of it was set
  ReportError(set);
  return false;
}

void SheetFiles::Finish() {
  if (maker_) {
    maker_->Finish();
    if (const size_t meet = maker_->numbers_in_texts(); meet > 0) {
      ReportWarning("--numbers",
                    std::to_string(meet) + " reach into the text of their sign (--number-height)");
    }
  }
  if (first_ && !HasEnded()) Write(*std::exchange(first_, std::nullopt), 1, signs_on_first_);
}

const char* SheetFiles::OverfullReason() {
  return "the rows fill more than one sheet: name files by {sheet}; nothing is written";
}

void SheetFiles::Take(const Drawing& sheet, size_t number) {
  if (HasEnded()) return;
  if (plan_.NamesUseSheet()) {
    Write(sheet, number, maker_->signs_set());
  } else if (number == 1) {
    first_ = sheet;
    signs_on_first_ = maker_->signs_set();
  } else {
    first_.reset();
    is_overfull_ = true;
    messages_.push_back({false, "-o", OverfullReason()});
  }
}

// `signs` are those on this sheet and on the ones before it.
void SheetFiles::Write(const Drawing& sheet, size_t number, uint64_t signs) {
  Written written;
  std::vector<Message> told;
  {
    const HeldMessages held(&told);
    WriteFiles(sheet, number, &written);
  }
  ++counts_.sheets;
  counts_.kept += written.kept ? 1 : 0;
  counts_.failed += written.failed ? 1 : 0;
  RowEnd end;
  if (!written.names.empty()) end.end = SheetEnd::kMade;
  if (written.kept) end.end = SheetEnd::kKept;
  if (written.failed) end.end = SheetEnd::kFailed;
  counts_.done += end.end == SheetEnd::kDone ? 1 : 0;
  for (Message& message : told) {
    message.what = "sheet " + std::to_string(number) + ": " + message.what;
    if (!message.is_warning && end.why.empty()) end.why = message.what + ": " + message.why;
    if (!message.is_warning) message.why += RowsUpTo(signs);
    messages_.push_back(std::move(message));
  }
  EndRows(signs, end);
  told_({number, std::move(written.names), closed_});
}

void SheetFiles::WriteFiles(const Drawing& sheet, size_t number, Written* written) {
  std::vector<std::string> names;
  written->failed = !plan_.FillNames({.sheet = number}, &names);
  for (size_t i = 0; i < names.size() && !is_full_; ++i) {
    WriteFile(sheet, *job_.outputs[i].format, names[i], written);
  }
}

void SheetFiles::WriteFile(const Drawing& sheet, const Format& format, const std::string& name,
                           Written* written) {
  const std::filesystem::path path = PathArgument(name);
  if (job_.existing == ExistingFiles::kResume) leftovers_.CleanFor(path);
  bool stays = false;
  Status status = FindStanding(path, job_.existing, &stays);
  if (stays) {
    if (job_.existing == ExistingFiles::kResume) return;
    written->kept = true;
    if (++counts_.kept_files == 1) counts_.first_kept = name;
    return;
  }
  if (status.ok()) status = folders_.MakeFor(path);
  if (status.ok()) status = WriteDrawing(sheet, style_.style, style_.tolerance, format, path);
  if (!status.ok()) {
    ReportError(status);
    written->failed = true;
    is_full_ |= status.failure == Failure::kNoSpace;
    return;
  }
  written->names.push_back(name);
  ++counts_.files;
  const PathFacts facts = FactsOfPath(path);
  counts_.bytes += facts.kind == PathKind::kFile ? facts.size : 0;
}

uint64_t SheetFiles::CountStanding(uint64_t rows) const {
  uint64_t standing = 0;
  const uint64_t most = plan_.NamesUseSheet() ? rows * static_cast<uint64_t>(copies_) : 1;
  std::vector<std::string> names;
  for (uint64_t sheet = 1; sheet <= most; ++sheet) {
    const uint64_t before = standing;
    if (!plan_.FillNames({.sheet = sheet}, &names)) return standing;
    for (const std::string& name : names) standing += PathExists(PathArgument(name)) ? 1 : 0;
    if (standing == before) return standing;
  }
  return standing;
}

// " (rows 12 to 17)": the rows from the finished sheets on.
std::string SheetFiles::RowsUpTo(uint64_t signs) const {
  const auto copies = static_cast<uint64_t>(copies_);
  const uint64_t first = open_[signs_done_ / copies - closed_].number;
  const uint64_t last = open_[(signs - 1) / copies - closed_].number;
  if (first == last) return " (row " + std::to_string(first) + ")";
  return " (rows " + std::to_string(first) + " to " + std::to_string(last) + ")";
}

void SheetFiles::EndRows(uint64_t signs, const RowEnd& end) {
  const auto copies = static_cast<uint64_t>(copies_);
  for (uint64_t row = signs_done_ / copies; row <= (signs - 1) / copies; ++row) {
    RowEnd& known = open_[row - closed_].end;
    if (end.end > known.end) known = end;
  }
  signs_done_ = signs;
  for (; closed_ < signs / copies; ++closed_) {
    ends_.push_back(std::move(open_.front().end));
    open_.pop_front();
  }
}

}  // namespace kerno
