#include "app/series_run.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <new>
#include <utility>

#include "app/cut_warnings.h"
#include "app/option_values.h"
#include "app/series_names.h"
#include "base/ordered_work.h"
#include "base/stop.h"
#include "base/text.h"
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
  Status status = RowSource::Open(job_.list, &rows);
  SeriesRow row;
  while (status.ok() && !is_stopped_ && rows->Next(&row, &status)) {
    if (!visit(row)) return true;
  }
  if (!status.ok()) ReportError(status);
  return status.ok();
}

// Leaves out rows of numbers alone that are not wanted, where they cannot matter: their files are
// not those of other rows. False where they may be.
bool SeriesRun::SkipCountedRows() {
  RowList& list = job_.list;
  if (list.kind != RowList::Kind::kCount) return false;
  const bool differ = sheets_ || plan_.NamesDifferByNumber(list.count);
  if (!differ) return false;
  list.first = job_.first;
  list.count = std::min(list.count, job_.last);
  return RowSource::Open(list, &rows_).ok();
}

// No two rows may write one file. All rows of the list are looked at, for those that are not wanted
// now may be another machine's.
bool SeriesRun::NamesAreGood() {
  const bool differ = SkipCountedRows();
  const bool cleans = !sheets_ && job_.existing == ExistingFiles::kResume;
  if (differ && !cleans && !job_.asks_first && job_.list.kind == RowList::Kind::kCount) {
    const RowList& list = job_.list;
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
      if (!is_wanted) continue;
      const std::filesystem::path path = PathArgument(name);
      if (cleans) leftovers.CleanFor(path);
      if (job_.asks_first && PathExists(path)) ++counts_.standing;
    }
    return true;
  });
  if (sheets_ && job_.asks_first) counts_.standing = sheets_->CountStanding(counts_.rows);
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

bool SeriesRun::PrepareSheets() {
  sheets_.emplace(job_, plan_, is_stopped_,
                  [this](const SheetResult& sheet) { observer_.SheetEnds(sheet); });
  const std::vector<std::string>& columns = rows_->columns();
  if (plan_.NamesUseRows() && std::ranges::find(columns, "sheet") != columns.end()) {
    ReportError("{sheet}", "is a column of the list, not the number of the sheet: rename it");
    return false;
  }
  if (!sheets_->Check()) return false;
  const auto column = std::ranges::find(columns, "row");
  if (column != columns.end()) mark_column_ = static_cast<size_t>(column - columns.begin());
  return true;
}

SeriesEnd SeriesRun::Prepare() {
  if (const Status opened = RowSource::Open(job_.list, &rows_); !opened.ok()) {
    ReportError(opened);
    return SeriesEnd::kFailed;
  }
  if (!plan_.Read(job_.texts, job_.outputs, job_.text, job_.escapes, rows_->columns())) {
    return SeriesEnd::kWrongUsage;
  }
  if (job_.sheets) {
    if (!PrepareSheets()) return SeriesEnd::kWrongUsage;
  } else if (plan_.NamesUseSheet() || plan_.TextsUseSheet()) {
    ReportError("{sheet}", "is known only where rows go on sheets (--sheet)");
    return SeriesEnd::kWrongUsage;
  }
  if (const SeriesEnd checked = CheckOptions(); checked != SeriesEnd::kDone) return checked;
  if (!NamesAreGood()) return SeriesEnd::kFailed;
  if (counts_.standing > 0) return SeriesEnd::kFilesStand;
  if (job_.failed.empty()) return SeriesEnd::kDone;
  failed_ = std::make_unique<FailedRows>(rows_.get(), NumbersUsed());
  if (const Status opened = failed_->Open(PathArgument(job_.failed)); !opened.ok()) {
    ReportError(opened);
    return SeriesEnd::kFailed;
  }
  return SeriesEnd::kDone;
}

// What rows have no part in is wrong once, not in every row.
SeriesEnd SeriesRun::CheckOptions() {
  std::vector<Message> told;
  CutTexts sample = job_.texts;
  bool is_read = false;
  {
    const HeldMessages held(&told);
    plan_.FillSamples(&sample);
    is_read = ReadSetting(sample, job_.outputs, &shared_);
  }
  for (const Message& message : told) {
    if (!message.is_warning) {
      ReportError(message.what, message.why);
    } else if (!plan_.OptionsVary()) {
      ReportWarning(message.what, message.why);
    }
  }
  if (!is_read) return SeriesEnd::kWrongUsage;
  if (plan_.FacesVary()) return SeriesEnd::kDone;
  const Status opened = CutWorkshop().Open(shared_.job);
  if (opened.ok()) return SeriesEnd::kDone;
  ReportError(opened);
  return opened.failure == Failure::kNotFound ? SeriesEnd::kFaceTrouble : SeriesEnd::kFailed;
}

// The columns that tables of failed rows need beside those of the list.
std::vector<std::string> SeriesRun::NumbersUsed() const {
  std::vector<std::string> used = plan_.NumbersUsed();
  const bool is_marked = sheets_ && sheets_->HasNumbers() && !mark_column_;
  if (is_marked && std::ranges::find(used, "row") == used.end()) used.insert(used.begin(), "row");
  return used;
}

bool SeriesRun::Take(Slot* slot) {
  while (!is_stopped_ && rows_->Next(&slot->row, &list_status_)) {
    if (slot->row.number > job_.last) return false;
    if (IsInRange(slot->row.number)) return true;
  }
  return false;
}

void SeriesRun::Work(Slot* slot, Worker* worker) {
  slot->files.clear();
  slot->messages.clear();
  slot->description.clear();
  slot->why.clear();
  slot->is_open = false;
  slot->outcome = RowOutcome::kNotTried;
  if (stops_) return;
  const HeldMessages held(&slot->messages);
  slot->outcome = RowOutcome::kFailed;
  try {
    const Status done = RunStoppable([this] { return is_stopped_.load(); }, u"row", [&] {
      slot->outcome = MakeRow(slot, worker);
      return Status::Ok();
    });
    if (!done.ok()) slot->outcome = RowOutcome::kNotTried;
  } catch (const std::bad_alloc&) {
    ReportError("memory", "there is not enough for this text");
  } catch (const std::exception& error) {
    ReportError("", error.what());
  }
}

RowOutcome SeriesRun::MakeRow(Slot* slot, Worker* worker) {
  if (!slot->row.fault.empty()) {
    ReportError("", Utf16ToUtf8(slot->row.fault));
    return RowOutcome::kFailed;
  }
  if (sheets_) return MakeSign(slot, worker);
  if (!plan_.FillNames({&slot->row}, &slot->names)) return RowOutcome::kFailed;
  slot->wanted.clear();
  for (size_t i = 0; i < slot->names.size(); ++i) {
    bool stays = false;
    const Status found = FindStanding(PathArgument(slot->names[i]), job_.existing, &stays);
    if (!found.ok()) {
      ReportError(found);
      return RowOutcome::kFailed;
    }
    if (!stays) slot->wanted.push_back(i);
  }
  const bool is_whole = slot->wanted.size() == slot->names.size();
  const RowOutcome standing =
      job_.existing == ExistingFiles::kResume ? RowOutcome::kDone : RowOutcome::kKept;
  if (slot->wanted.empty()) return standing;
  CutDrawing made;
  if (!MakeDrawing(slot->row, worker, &made) || !WriteFiles(made, slot, worker)) {
    return RowOutcome::kFailed;
  }
  slot->description = observer_.Describe(made, slot->files);
  return is_whole || standing == RowOutcome::kDone ? RowOutcome::kMade : standing;
}

bool SeriesRun::MakeDrawing(const SeriesRow& row, Worker* worker, CutDrawing* made) const {
  return worker->maker.Make({&row}, made) && ReportOnCut(*made, job_.strict);
}

RowOutcome SeriesRun::MakeSign(Slot* slot, Worker* worker) const {
  CutDrawing made;
  if (!MakeDrawing(slot->row, worker, &made)) return RowOutcome::kFailed;
  const auto& [job, style] = worker->maker.setting();
  slot->style = {style, job.tolerance, job.curves};
  slot->description = observer_.Describe(made, {});
  slot->sign = std::move(made.drawing);
  return RowOutcome::kMade;
}

bool SeriesRun::WriteFiles(const CutDrawing& made, Slot* slot, Worker* worker) {
  const auto& [job, style] = worker->maker.setting();
  for (const size_t i : slot->wanted) {
    const auto start = Clock::now();
    const std::string& name = slot->names[i];
    const std::filesystem::path path = PathArgument(name);
    Status status = worker->folders.MakeFor(path);
    if (status.ok()) status = WriteCut(job, made, style, *job_.outputs[i].format, path);
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
    slot->outcome = RowOutcome::kMade;
    slot->messages.clear();
    slot->is_open = true;
  } else if (slot->outcome == RowOutcome::kMade) {
    const HeldMessages held(&slot->messages);
    slot->is_open =
        sheets_->Add(std::move(slot->sign), slot->style, slot->row.number, MarkOf(slot->row));
    if (!slot->is_open) slot->outcome = RowOutcome::kFailed;
  }
  observer_.SheetsSay(sheets_->TakeMessages());
  observer_.RowSays(slot->row.number, slot->messages);
  if (slot->outcome == RowOutcome::kFailed) slot->why = FirstError(slot->messages);
  slot->messages.clear();
  slot->row.fields = {};
  if (!failed_) slot->row.raw = {};
  open_.push_back(std::move(static_cast<RowResult&>(*slot)));
  CloseRows();
  if (sheets_->HasEnded()) stops_ = true;
}

// Tells of the rows up to the first one whose sheets are not all finished.
void SeriesRun::CloseRows() {
  const std::vector<RowEnd> ends = sheets_->TakeEnds();
  auto next = ends.begin();
  for (; !open_.empty(); open_.pop_front()) {
    RowResult& row = open_.front();
    if (row.is_open && next != ends.end()) {
      constexpr RowOutcome kOutcomes[] = {RowOutcome::kDone, RowOutcome::kMade, RowOutcome::kKept,
                                          RowOutcome::kFailed};
      row.outcome = kOutcomes[static_cast<size_t>(next->end)];
      row.why = next++->why;
    } else if (row.is_open && sheets_->HasEnded()) {
      row.outcome = sheets_->IsOverfull() ? RowOutcome::kFailed : RowOutcome::kNotTried;
      if (sheets_->IsOverfull()) row.why = SheetFiles::OverfullReason();
    } else if (row.is_open) {
      return;
    }
    Tell(row);
  }
}

// Writes the last sheet.
void SeriesRun::FinishSheets() {
  if (!is_stopped_) sheets_->Finish();
  observer_.SheetsSay(sheets_->TakeMessages());
  CloseRows();
  counts_.sheets = sheets_->counts();
  counts_.files = counts_.sheets->files;
  counts_.bytes = counts_.sheets->bytes;
}

// In the order of the rows.
void SeriesRun::Give(Slot* slot) {
  ++counts_.given;
  if (sheets_) {
    PutOnSheet(slot);
  } else {
    observer_.RowSays(slot->row.number, slot->messages);
    if (slot->outcome == RowOutcome::kFailed) slot->why = FirstError(slot->messages);
    Tell(*slot);
  }
  observer_.Came(counts_);
}

void SeriesRun::ListFailed(const SeriesRow& row) {
  if (!failed_) return;
  const Status added = failed_->Add(row);
  if (added.ok()) return;
  ReportError(added);
  failed_.reset();
  failed_are_listed_ = false;
}

// Counts and tells what became of a row.
void SeriesRun::Tell(const RowResult& result) {
  switch (result.outcome) {
    case RowOutcome::kMade:
      ++counts_.made;
      break;
    case RowOutcome::kKept:
      if (++counts_.kept == 1) counts_.first_kept = "row " + RowText(result.row.number);
      break;
    case RowOutcome::kDone:
      ++counts_.done;
      break;
    case RowOutcome::kFailed:
      ++counts_.failed;
      break;
    case RowOutcome::kNotTried:
      ++counts_.not_tried;
      break;
  }
  if (result.outcome == RowOutcome::kFailed || result.outcome == RowOutcome::kNotTried) {
    ListFailed(result.row);
  }
  for (const WrittenFile& file : result.files) {
    ++counts_.files;
    counts_.bytes += file.bytes;
  }
  observer_.RowEnds(result);
}

bool SeriesRun::FinishFailed() {
  if (!failed_) return true;
  Status status = failed_->Finish();
  if (status.ok()) status = failed_->Commit();
  if (!status.ok()) ReportError(status);
  if (const uint64_t lost = failed_->left_out(); lost > 0) {
    ReportWarning(job_.failed,
                  RowText(lost) + (lost == 1 ? " row is" : " rows are") + " too long to be in it");
  }
  return status.ok();
}

void SeriesRun::MakeRows() {
  std::vector<Slot> slots(SlotsFor(job_.jobs));
  std::vector<std::unique_ptr<Worker>> workers;
  for (size_t i = 0; i < job_.jobs; ++i) {
    workers.push_back(std::make_unique<Worker>(job_, plan_, shared_));
  }
  RunInOrder(
      {.take = [&](size_t slot) { return Take(&slots[slot]); },
       .work = [&](size_t slot, size_t worker) { Work(&slots[slot], workers[worker].get()); },
       .give = [&](size_t slot) { Give(&slots[slot]); }},
      job_.jobs);
}

SeriesEnd SeriesRun::End() {
  const bool failed_stand = FinishFailed() && failed_are_listed_;
  if (is_stopped_) return SeriesEnd::kStopped;
  const SheetCounts sheets = counts_.sheets.value_or(SheetCounts());
  const uint64_t lost =
      counts_.failed + counts_.kept + counts_.not_tried + sheets.failed + sheets.kept;
  const bool is_done = failed_stand && lost == 0 && list_status_.ok();
  return is_done ? SeriesEnd::kDone : SeriesEnd::kFailed;
}

SeriesEnd SeriesRun::Run() {
  const SeriesEnd prepared = Prepare();
  if (is_stopped_) return SeriesEnd::kStopped;
  if (prepared != SeriesEnd::kDone) return prepared;
  observer_.Begin(counts_.rows);
  MakeRows();
  if (sheets_) FinishSheets();
  observer_.End(counts_, list_status_);
  return End();
}

}  // namespace kerno
