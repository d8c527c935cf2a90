#include "cli/series_run.h"

#include <algorithm>
#include <chrono>
#include <new>
#include <utility>

#include "app/series_names.h"
#include "base/ordered_work.h"
#include "base/text.h"
#include "cli/arguments.h"
#include "cli/cut_report.h"
#include "platform/folder_path.h"

namespace kerno {
namespace {

using Clock = std::chrono::steady_clock;

int64_t MillisecondsSince(Clock::time_point start) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

std::string RowText(uint64_t row) {
  return std::to_string(row);
}

void ReportKept(const std::string& first, uint64_t count) {
  ReportError(first, std::string("files that are there are kept") +
                         (count > 1 ? ", as in " + RowText(count - 1) + " more" : "") +
                         " (--replace writes them again, --resume takes them for done)");
}

void ReportClash(const NameClash& clash) {
  const std::string rows = clash.first == clash.second
                               ? "row " + RowText(clash.first) + " would write it twice"
                               : "rows " + RowText(clash.first) + " and " + RowText(clash.second) +
                                     " would both write it";
  const bool by_case = clash.first_name != clash.second_name;
  ReportError(clash.first_name,
              rows + (by_case ? " (\"" + clash.second_name + "\" is the same file there)" : "") +
                  "; nothing is written");
}

}  // namespace

// Calls `visit` for each row of the list that can be read, until it answers false.
bool SeriesRun::EachRow(const std::function<bool(const SeriesRow&)>& visit) {
  std::unique_ptr<RowSource> rows;
  Status status = RowSource::Open(settings_.list, &rows);
  SeriesRow row;
  while (status.ok() && rows->Next(&row, &status)) {
    if (!visit(row)) return true;
  }
  if (!status.ok()) ReportError(status);
  return status.ok();
}

// No two rows may write one file. All rows of the list are looked at, for those that are not wanted
// now may be another machine's.
bool SeriesRun::NamesAreGood() {
  SeriesNames names;
  LeftoverRemover leftovers;
  std::vector<std::string> filled;
  std::vector<Message> unshown;  // such rows fail later
  bool is_read = EachRow([&](const SeriesRow& row) {
    unshown.clear();
    const bool is_wanted = IsInRange(row.number);
    counts_.rows += is_wanted ? 1 : 0;
    if (sheets_) return true;
    const HeldMessages held(&unshown);
    if (!row.fault.empty() || !plan_.FillNames({&row}, &filled)) return true;
    for (const std::string& name : filled) {
      names.Note(PlainName(name));
      if (is_wanted && settings_.existing == ExistingFiles::kResume) {
        leftovers.CleanFor(PathArgument(name));
      }
    }
    return true;
  });
  if (!is_read || !names.HasRepeats()) return is_read;
  std::optional<NameClash> clash;
  is_read = EachRow([&](const SeriesRow& row) {
    unshown.clear();
    const HeldMessages held(&unshown);
    if (!row.fault.empty() || !plan_.FillNames({&row}, &filled)) return true;
    for (const std::string& name : filled) {
      if (!clash) clash = names.Compare(row.number, PlainName(name));
    }
    return !clash;
  });
  if (clash) ReportClash(*clash);
  return is_read && !clash;
}

ExitStatus SeriesRun::Prepare(std::string_view text, Escapes escapes) {
  if (const Status opened = RowSource::Open(settings_.list, &rows_); !opened.ok()) {
    ReportError(opened);
    return kFailed;
  }
  if (!plan_.Read(options_, text, escapes, rows_->columns())) return kWrongUsage;
  if (sheet_options_) {
    sheets_.emplace(*sheet_options_, options_.outputs(), plan_, settings_.existing);
    if (!sheets_->Check()) return kWrongUsage;
  } else if (plan_.NamesUseSheet() || plan_.TextsUseSheet()) {
    ReportError("{sheet}", "is known only where rows go on sheets (--sheet)");
    return kWrongUsage;
  }
  if (!plan_.OptionsVary()) {
    if (!options_.ReadJob()) return kWrongUsage;
    if (const Status opened = CutWorkshop().Open(options_.job()); !opened.ok()) {
      ReportError(opened);
      return opened.failure == Failure::kNotFound ? kFaceTrouble : kFailed;
    }
  }
  if (!NamesAreGood()) return kFailed;
  if (settings_.failed.empty()) return kDone;
  failed_ = std::make_unique<FailedRows>(rows_.get(), plan_.NumbersUsed());
  if (const Status opened = failed_->Open(PathArgument(settings_.failed)); !opened.ok()) {
    ReportError(opened);
    return kFailed;
  }
  return kDone;
}

bool SeriesRun::Take(Slot* slot) {
  while (rows_->Next(&slot->row, &list_status_)) {
    if (slot->row.number > settings_.last) return false;
    if (IsInRange(slot->row.number)) return true;
  }
  return false;
}

void SeriesRun::Work(Slot* slot, Worker* worker) {
  slot->files.clear();
  slot->messages.clear();
  slot->json.clear();
  slot->outcome = Outcome::kNotTried;
  if (stops_) return;
  const HeldMessages held(&slot->messages);
  slot->outcome = Outcome::kFailed;
  try {
    slot->outcome = MakeRow(slot, worker);
  } catch (const std::bad_alloc&) {
    ReportError("memory", "there is not enough for this text");
  } catch (const std::exception& error) {
    ReportError("", error.what());
  }
}

SeriesRun::Outcome SeriesRun::MakeRow(Slot* slot, Worker* worker) {
  if (!slot->row.fault.empty()) {
    ReportError("", Utf16ToUtf8(slot->row.fault));
    return Outcome::kFailed;
  }
  if (sheets_) return MakeSign(slot, worker);
  if (!plan_.FillNames({&slot->row}, &slot->names)) return Outcome::kFailed;
  const bool keeps = settings_.existing != ExistingFiles::kReplace;
  const auto stays = [&](const std::string& name) {
    return keeps && FactsOfPath(PathArgument(name)).kind != PathKind::kMissing;
  };
  slot->wanted.clear();
  for (size_t i = 0; i < slot->names.size(); ++i) {
    if (!stays(slot->names[i])) slot->wanted.push_back(i);
  }
  const bool is_whole = slot->wanted.size() == slot->names.size();
  const Outcome standing =
      settings_.existing == ExistingFiles::kResume ? Outcome::kDone : Outcome::kKept;
  if (slot->wanted.empty()) return standing;
  CutDrawing made;
  if (!MakeDrawing(slot->row, worker, &made) || !WriteFiles(made, slot, worker)) {
    return Outcome::kFailed;
  }
  if (manner_.json) slot->json = JsonOf(made, slot->files);
  return is_whole || standing == Outcome::kDone ? Outcome::kMade : standing;
}

bool SeriesRun::MakeDrawing(const SeriesRow& row, Worker* worker, CutDrawing* made) const {
  return worker->maker.Make({&row}, made) && ReportOnCut(*made, manner_.strict);
}

SeriesRun::Outcome SeriesRun::MakeSign(Slot* slot, Worker* worker) const {
  CutDrawing made;
  if (!MakeDrawing(slot->row, worker, &made)) return Outcome::kFailed;
  const CutOptions& options = worker->maker.options();
  slot->style = {options.style(), options.job().tolerance, options.job().curves};
  if (manner_.json) slot->json = JsonOf(made, {});
  slot->sign = std::move(made.drawing);
  return Outcome::kMade;
}

bool SeriesRun::WriteFiles(const CutDrawing& made, Slot* slot, Worker* worker) {
  const CutOptions& options = worker->maker.options();
  for (const size_t i : slot->wanted) {
    const auto start = Clock::now();
    const std::string& name = slot->names[i];
    const std::filesystem::path path = PathArgument(name);
    Status status = worker->folders.MakeFor(path);
    if (status.ok()) status = options.Write(made, *options.outputs().outputs()[i].format, path);
    if (!status.ok()) {
      if (status.failure == Failure::kNoSpace) stops_ = true;
      ReportError(status);
      return false;
    }
    const PathFacts facts = FactsOfPath(path);
    slot->files.push_back(
        {name, facts.kind == PathKind::kFile ? facts.size : 0, MillisecondsSince(start)});
  }
  return true;
}

void SeriesRun::PutOnSheet(Slot* slot) {
  if (slot->outcome != Outcome::kMade) return;
  const HeldMessages held(&slot->messages);
  if (!sheets_->Add(std::move(slot->sign), slot->style, slot->row.number))
    slot->outcome = Outcome::kFailed;
  if (sheets_->counts().failed) stops_ = true;
}

// Writes the last sheet. False when not all sheets stand as they were wanted.
bool SeriesRun::FinishSheets() {
  if (!sheets_) return true;
  sheets_->Finish();
  const SheetFiles::Counts& counts = sheets_->counts();
  counts_.files = counts.files;
  counts_.bytes = counts.bytes;
  if (counts.kept > 0) ReportKept(counts.first_kept, counts.kept);
  if (manner_.json) all_printed_ &= Print(sheets_->TakeJson());
  return !counts.failed && counts.kept == 0;
}

// Counts and tells, in the order of the rows.
void SeriesRun::Give(Slot* slot) {
  if (sheets_) PutOnSheet(slot);
  const char* outcome = "made";
  switch (slot->outcome) {
    case Outcome::kMade:
      ++counts_.made;
      break;
    case Outcome::kKept:
      outcome = "kept";
      if (++counts_.kept == 1) counts_.first_kept = "row " + RowText(slot->row.number);
      break;
    case Outcome::kDone:
      outcome = "done";
      ++counts_.done;
      break;
    case Outcome::kFailed:
      outcome = "failed";
      ++counts_.failed;
      break;
    case Outcome::kNotTried:
      outcome = "not tried";
      ++counts_.not_tried;
      break;
  }
  messages_->Show(slot->row.number, slot->messages);
  const bool is_lost = slot->outcome == Outcome::kFailed || slot->outcome == Outcome::kNotTried;
  if (is_lost && failed_) {
    if (const Status added = failed_->Add(slot->row); !added.ok()) {
      ReportError(added);
      failed_.reset();
      all_printed_ = false;
    }
  }
  for (const WrittenFile& file : slot->files) {
    ++counts_.files;
    counts_.bytes += file.bytes;
  }
  if (manner_.json) {
    std::string line =
        "{\"row\": " + RowText(slot->row.number) + ", \"outcome\": \"" + outcome + "\"";
    line += slot->json.empty() ? "}\n" : ", " + slot->json.substr(1);
    all_printed_ &= Print(line);
  }
  messages_->ShowProgress(counts_.made + counts_.kept + counts_.done + counts_.failed,
                          counts_.failed);
}

bool SeriesRun::FinishFailed() {
  if (!failed_) return true;
  Status status = failed_->Finish();
  rows_.reset();  // the list may be the file itself
  if (status.ok()) status = failed_->Commit();
  if (!status.ok()) ReportError(status);
  if (const uint64_t lost = failed_->left_out(); lost > 0) {
    ReportWarning(settings_.failed,
                  RowText(lost) + (lost == 1 ? " row is" : " rows are") + " too long to be in it");
  }
  return status.ok();
}

bool SeriesRun::PrintSummary() const {
  if (manner_.quiet || manner_.json) return true;
  const auto part = [](uint64_t count, const char* what) {
    return count == 0 ? std::string() : ", " + RowText(count) + what;
  };
  return PrintLine(
      RowText(counts_.rows) + (counts_.rows == 1 ? " row: " : " rows: ") + RowText(counts_.made) +
      " made" + part(counts_.done, " done before") + part(counts_.kept, " kept") +
      part(counts_.failed, " failed") + part(counts_.not_tried, " not tried") +
      (sheets_ ? part(sheets_->counts().sheets, " sheets") : "") + ", " + RowText(counts_.files) +
      (counts_.files == 1 ? " file, " : " files, ") + RowText(counts_.bytes) + " bytes");
}

ExitStatus SeriesRun::Run(std::string_view text, Escapes escapes) {
  if (const ExitStatus prepared = Prepare(text, escapes); prepared != kDone) return prepared;
  messages_.emplace(manner_.quiet, counts_.rows);
  std::vector<Slot> slots(SlotsFor(settings_.jobs));
  std::vector<std::unique_ptr<Worker>> workers;
  for (size_t i = 0; i < settings_.jobs; ++i) {
    workers.push_back(std::make_unique<Worker>(options_, plan_));
  }
  RunInOrder(
      {.take = [&](size_t slot) { return Take(&slots[slot]); },
       .work = [&](size_t slot, size_t worker) { Work(&slots[slot], workers[worker].get()); },
       .give = [&](size_t slot) { Give(&slots[slot]); }},
      settings_.jobs);
  messages_->Finish();
  if (!list_status_.ok()) ReportError(list_status_);
  if (counts_.not_tried > 0) {
    ReportError("series", "stops, for files cannot be written: " + RowText(counts_.not_tried) +
                              " rows are not tried (--resume goes on)");
  }
  const bool sheets_stand = FinishSheets();
  if (counts_.kept > 0) ReportKept(counts_.first_kept, counts_.kept);
  const bool is_told = FinishFailed() && PrintSummary();
  const bool is_flushed = FinishPrinting() && all_printed_;
  const bool all_made = counts_.failed + counts_.kept + counts_.not_tried == 0;
  return is_told && is_flushed && all_made && sheets_stand && list_status_.ok() ? kDone : kFailed;
}

}  // namespace kerno
