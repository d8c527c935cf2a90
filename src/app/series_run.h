// A series: a drawing for each row of a list, written to files of its own or on sheets.
#pragma once

#include <atomic>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/failed_rows.h"
#include "app/reports.h"
#include "app/row_maker.h"
#include "app/row_source.h"
#include "app/series_files.h"
#include "app/series_job.h"
#include "app/series_plan.h"
#include "app/sheet_files.h"

namespace kerno {

enum class RowOutcome {
  kMade,
  kKept,      // files that were there stay
  kDone,      // by an earlier run
  kFailed,    // by what its messages say
  kNotTried,  // the disk was full before, or the series was stopped
};

// What is told of a row.
struct RowResult {
  SeriesRow row;
  RowOutcome outcome = RowOutcome::kMade;
  std::vector<WrittenFile> files;  // those written
  std::vector<Message> messages;
  std::string description;  // of what was made, by SeriesObserver::Describe
  std::string why;          // it failed
  bool is_open = false;     // until its sheets are written
};

struct SeriesCounts {
  uint64_t rows = 0;  // that are wanted
  uint64_t given = 0, made = 0, kept = 0, done = 0, failed = 0, not_tried = 0;
  uint64_t files = 0, bytes = 0;
  uint64_t standing = 0;              // files that are there already, where that was asked
  std::string first_kept;             // the first kept row
  std::optional<SheetCounts> sheets;  // where rows go on sheets, at the end
};

// Whoever wants to know how a series goes. All but Describe is called by the thread that runs it,
// in the order of the rows. What is wrong before the first row and after the last one is reported.
class SeriesObserver {
 public:
  virtual ~SeriesObserver() = default;

  // By many threads at a time: what is kept of a drawing until its row is told.
  virtual std::string Describe(const CutDrawing& /*made*/,
                               const std::vector<WrittenFile>& /*files*/) {
    return {};
  }

  // Everything that could be checked before is good: so many rows are made.
  virtual void Begin(uint64_t rows) = 0;
  virtual void RowSays(uint64_t row, const std::vector<Message>& messages) = 0;
  virtual void SheetsSay(const std::vector<Message>& messages) = 0;
  // What became of a row; on sheets, once all of its sheets are written.
  virtual void RowEnds(const RowResult& result) = 0;
  virtual void SheetEnds(const SheetResult& sheet) = 0;
  // After each row.
  virtual void Came(const SeriesCounts& counts) = 0;
  // After the last one. `list` says whether the list could be read to its end.
  virtual void End(const SeriesCounts& counts, const Status& list) = 0;
};

class SeriesRun {
 public:
  // The observer lives as long as this object.
  SeriesRun(SeriesJob job, SeriesObserver& observer) : job_(std::move(job)), observer_(observer) {}

  SeriesEnd Run();

  // Ends it soon: rows at hand are given up, their files are whole or not there. May be called by
  // any thread.
  void Stop() { is_stopped_ = stops_ = true; }

  const SeriesCounts& counts() const { return counts_; }

 private:
  // A row on its way.
  struct Slot : RowResult {
    std::vector<std::string> names;  // of its files, for each output
    std::vector<size_t> wanted;      // the outputs that are to be written
    Drawing sign;                    // for a sheet
    SheetStyle style;
  };
  // What a thread keeps from row to row.
  struct Worker {
    Worker(const SeriesJob& job, const SeriesPlan& plan, const CutSetting& shared)
        : maker(job, plan, shared) {}
    RowMaker maker;
    FolderMaker folders;
  };

  SeriesEnd Prepare();
  bool PrepareSheets();
  SeriesEnd CheckOptions();
  bool SkipCountedRows();
  bool NamesAreGood();
  std::vector<std::string> NumbersUsed() const;
  bool EachRow(const std::function<bool(const SeriesRow&)>& visit);

  void MakeRows();
  bool Take(Slot* slot);
  void Work(Slot* slot, Worker* worker);
  RowOutcome MakeRow(Slot* slot, Worker* worker);
  bool MakeDrawing(const SeriesRow& row, Worker* worker, CutDrawing* made) const;
  RowOutcome MakeSign(Slot* slot, Worker* worker) const;
  bool WriteFiles(const CutDrawing& made, Slot* slot, Worker* worker);
  void Give(Slot* slot);
  void PutOnSheet(Slot* slot);
  int64_t MarkOf(const SeriesRow& row) const;
  void CloseRows();
  void FinishSheets();
  void Tell(const RowResult& result);
  void ListFailed(const SeriesRow& row);
  bool FinishFailed();
  SeriesEnd End();

  bool IsInRange(uint64_t row) const { return row >= job_.first && row <= job_.last; }

  SeriesJob job_;
  SeriesObserver& observer_;
  SeriesPlan plan_;
  CutSetting shared_;  // of all rows, where these have no options of their own
  std::unique_ptr<RowSource> rows_;
  Status list_status_;
  std::unique_ptr<FailedRows> failed_;
  bool failed_are_listed_ = true;
  std::optional<SheetFiles> sheets_;
  std::optional<size_t> mark_column_;  // whose numbers signs bear
  std::deque<RowResult> open_;         // from the first row that is open
  // No row is tried any more; by the user's will, no row is taken either.
  std::atomic<bool> stops_ = false, is_stopped_ = false;
  SeriesCounts counts_;
};

}  // namespace kerno
