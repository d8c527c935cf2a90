#include "cli/series_run.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <new>
#include <utility>

#include "app/option_values.h"
#include "app/series_names.h"
#include "base/ordered_work.h"
#include "base/text.h"
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

std::string FirstError(const std::vector<Message>& messages) {
  const auto error = std::ranges::find(messages, false, &Message::is_warning);
  if (error == messages.end()) return {};
  return error->what.empty() ? error->why : error->what + ": " + error->why;
}

void ReportKept(const std::string& first, uint64_t count) {
  ReportError(first, std::string("files that are there are kept") +
                         (count > 1 ? ", as in " + RowText(count - 1) + " more" : "") +
                         " (--replace writes them again, --resume takes them for done)");
}

// "12 sheets (3 done before, 1 failed)"
std::string SheetsText(const SheetFiles::Counts& counts) {
  std::string parts;
  for (const auto& [count, what] :
       {std::pair(counts.done, " done before"), std::pair(counts.kept, " kept"),
        std::pair(counts.failed, " failed")}) {
    if (count > 0) parts += (parts.empty() ? " (" : ", ") + RowText(count) + what;
  }
  return RowText(counts.sheets) + (counts.sheets == 1 ? " sheet" : " sheets") + parts +
         (parts.empty() ? "" : ")");
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

// Leaves out rows of numbers alone that are not wanted, where they cannot matter: their files are
// not those of other rows. False where they may be.
bool SeriesRun::SkipCountedRows() {
  RowList& list = settings_.list;
  if (list.kind != RowList::Kind::kCount) return false;
  const bool differ = sheets_ || plan_.NamesDifferByNumber(list.count);
  if (!differ) return false;
  list.first = settings_.first;
  list.count = std::min(list.count, settings_.last);
  return RowSource::Open(list, &rows_).ok();
}

// No two rows may write one file. All rows of the list are looked at, for those that are not wanted
// now may be another machine's.
bool SeriesRun::NamesAreGood() {
  const bool differ = SkipCountedRows();
  const bool cleans = !sheets_ && settings_.existing == ExistingFiles::kResume;
  if (differ && !cleans && settings_.list.kind == RowList::Kind::kCount) {
    const RowList& list = settings_.list;
    counts_.rows = list.count < list.first ? 0 : list.count - list.first + 1;
    return true;
  }
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
      if (!differ) names.Note(PlainName(name));
      if (is_wanted && cleans) {
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
    const std::vector<std::string>& columns = rows_->columns();
    if (plan_.NamesUseRows() && std::ranges::find(columns, "sheet") != columns.end()) {
      ReportError("{sheet}", "is a column of the list, not the number of the sheet: rename it");
      return kWrongUsage;
    }
    if (!sheets_->Check()) return kWrongUsage;
    const auto column = std::ranges::find(columns, "row");
    if (column != columns.end()) mark_column_ = static_cast<size_t>(column - columns.begin());
  } else if (plan_.NamesUseSheet() || plan_.TextsUseSheet()) {
    ReportError("{sheet}", "is known only where rows go on sheets (--sheet)");
    return kWrongUsage;
  }
  if (const ExitStatus checked = CheckOptions(); checked != kDone) return checked;
  if (!NamesAreGood()) return kFailed;
  if (settings_.failed.empty()) return kDone;
  failed_ = std::make_unique<FailedRows>(rows_.get(), NumbersUsed());
  if (const Status opened = failed_->Open(PathArgument(settings_.failed)); !opened.ok()) {
    ReportError(opened);
    return kFailed;
  }
  return kDone;
}

// What rows have no part in is wrong once, not in every row.
ExitStatus SeriesRun::CheckOptions() {
  std::vector<Message> told;
  CutOptions sample = options_;
  CutOptions& checked = plan_.OptionsVary() ? sample : options_;
  bool is_read = false;
  {
    const HeldMessages held(&told);
    plan_.FillSamples(&sample);
    is_read = checked.ReadJob();
  }
  for (const Message& message : told) {
    if (!message.is_warning) {
      ReportError(message.what, message.why);
    } else if (!plan_.OptionsVary()) {
      ReportWarning(message.what, message.why);
    }
  }
  if (!is_read) return kWrongUsage;
  if (plan_.FacesVary()) return kDone;
  const Status opened = CutWorkshop().Open(checked.job());
  if (opened.ok()) return kDone;
  ReportError(opened);
  return opened.failure == Failure::kNotFound ? kFaceTrouble : kFailed;
}

// The columns that tables of failed rows need beside those of the list.
std::vector<std::string> SeriesRun::NumbersUsed() const {
  std::vector<std::string> used = plan_.NumbersUsed();
  const bool is_marked = sheets_ && sheets_->HasNumbers() && !mark_column_;
  if (is_marked && std::ranges::find(used, "row") == used.end()) used.insert(used.begin(), "row");
  return used;
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
  slot->why.clear();
  slot->is_open = false;
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
  slot->wanted.clear();
  for (size_t i = 0; i < slot->names.size(); ++i) {
    bool stays = false;
    const Status found = FindStanding(PathArgument(slot->names[i]), settings_.existing, &stays);
    if (!found.ok()) {
      ReportError(found);
      return Outcome::kFailed;
    }
    if (!stays) slot->wanted.push_back(i);
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

// The number that a sign bears: a list may have its own in a column "row", as tables of failed rows
// do.
int64_t SeriesRun::MarkOf(const SeriesRow& row) const {
  const auto number = static_cast<int64_t>(row.number);
  if (!mark_column_) return number;
  const std::string& field = row.fields[*mark_column_];
  int64_t mark = 0;
  const auto read = std::from_chars(field.data(), field.data() + field.size(), mark);
  const bool is_whole = read.ec == std::errc() && read.ptr == field.data() + field.size();
  return is_whole && mark >= 0 ? mark : number;
}

// What it says depends on the rows before it alone, however many are at work.
void SeriesRun::PutOnSheet(Slot* slot) {
  if (sheets_->HasEnded()) {
    slot->outcome = Outcome::kMade;
    slot->messages.clear();
    slot->is_open = true;
  } else if (slot->outcome == Outcome::kMade) {
    const HeldMessages held(&slot->messages);
    slot->is_open =
        sheets_->Add(std::move(slot->sign), slot->style, slot->row.number, MarkOf(slot->row));
    if (!slot->is_open) slot->outcome = Outcome::kFailed;
  }
  messages_->Show(sheets_->TakeMessages());
  messages_->Show(slot->row.number, slot->messages);
  if (slot->outcome == Outcome::kFailed) slot->why = FirstError(slot->messages);
  slot->messages.clear();
  slot->row.fields = {};
  if (!failed_) slot->row.raw = {};
  open_.push_back(std::move(static_cast<Result&>(*slot)));
  CloseRows();
  if (sheets_->HasEnded()) stops_ = true;
}

// Tells of the rows up to the first one whose sheets are not all finished.
void SeriesRun::CloseRows() {
  const std::vector<RowEnd> ends = sheets_->TakeEnds();
  auto next = ends.begin();
  for (; !open_.empty(); open_.pop_front()) {
    Result& row = open_.front();
    if (row.is_open && next != ends.end()) {
      constexpr Outcome kOutcomes[] = {Outcome::kDone, Outcome::kMade, Outcome::kKept,
                                       Outcome::kFailed};
      row.outcome = kOutcomes[static_cast<size_t>(next->end)];
      row.why = next++->why;
    } else if (row.is_open && sheets_->HasEnded()) {
      row.outcome = sheets_->IsOverfull() ? Outcome::kFailed : Outcome::kNotTried;
      if (sheets_->IsOverfull()) row.why = SheetFiles::OverfullReason();
    } else if (row.is_open) {
      return;
    }
    Tell(row);
  }
}

// Writes the last sheet. False when not all sheets stand as they were wanted.
bool SeriesRun::FinishSheets() {
  if (!sheets_) return true;
  sheets_->Finish();
  messages_->Show(sheets_->TakeMessages());
  CloseRows();
  const SheetFiles::Counts& counts = sheets_->counts();
  counts_.files = counts.files;
  counts_.bytes = counts.bytes;
  if (counts.kept_files > 0) ReportKept(counts.first_kept, counts.kept_files);
  if (manner_.json) all_printed_ &= Print(sheets_->TakeJson());
  return counts.failed + counts.kept == 0;
}

// In the order of the rows.
void SeriesRun::Give(Slot* slot) {
  ++counts_.given;
  if (sheets_) {
    PutOnSheet(slot);
  } else {
    messages_->Show(slot->row.number, slot->messages);
    if (slot->outcome == Outcome::kFailed) slot->why = FirstError(slot->messages);
    Tell(*slot);
  }
  messages_->ShowProgress(counts_.given - counts_.not_tried, counts_.failed);
}

bool SeriesRun::ListFailed(const SeriesRow& row) {
  if (!failed_) return true;
  const Status added = failed_->Add(row);
  if (added.ok()) return true;
  ReportError(added);
  failed_.reset();
  return false;
}

// Counts and prints what became of a row.
void SeriesRun::Tell(const Result& result) {
  const char* outcome = "made";
  switch (result.outcome) {
    case Outcome::kMade:
      ++counts_.made;
      break;
    case Outcome::kKept:
      outcome = "kept";
      if (++counts_.kept == 1) counts_.first_kept = "row " + RowText(result.row.number);
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
  const bool is_failed = result.outcome == Outcome::kFailed;
  const bool is_lost = is_failed || result.outcome == Outcome::kNotTried;
  if (is_lost) all_printed_ &= ListFailed(result.row);
  for (const WrittenFile& file : result.files) {
    ++counts_.files;
    counts_.bytes += file.bytes;
  }
  if (!manner_.json) return;
  std::string line =
      "{\"row\": " + RowText(result.row.number) + ", \"outcome\": \"" + outcome + "\"";
  if (is_failed) {
    line += ", \"error\": ";
    AppendJsonString(&line, Utf8ToUtf16Lossy(result.why));
  }
  line += is_lost || result.json.empty() ? "}\n" : ", " + result.json.substr(1);
  all_printed_ &= Print(line);
}

bool SeriesRun::FinishFailed() {
  if (!failed_) return true;
  Status status = failed_->Finish();
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
      (sheets_ ? ", " + SheetsText(sheets_->counts()) : "") + ", " + RowText(counts_.files) +
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
  const bool sheets_stand = FinishSheets();
  messages_->Finish();
  if (!list_status_.ok()) ReportError(list_status_);
  if (counts_.not_tried > 0) {
    ReportError("series", "stops, for files cannot be written: " + RowText(counts_.not_tried) +
                              " rows are not tried (--resume goes on)");
  }
  if (counts_.kept > 0 && !sheets_) ReportKept(counts_.first_kept, counts_.kept);
  const bool is_told = FinishFailed() && PrintSummary();
  const bool is_flushed = FinishPrinting() && all_printed_;
  const bool all_made = counts_.failed + counts_.kept + counts_.not_tried == 0;
  return is_told && is_flushed && all_made && sheets_stand && list_status_.ok() ? kDone : kFailed;
}

}  // namespace kerno
