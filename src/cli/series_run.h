// A series: a drawing for each row of a list, written to files of its own.
#pragma once

#include <atomic>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/failed_rows.h"
#include "app/row_source.h"
#include "app/series_files.h"
#include "cli/console.h"
#include "cli/cut_options.h"
#include "cli/row_maker.h"
#include "cli/series_messages.h"
#include "cli/series_options.h"
#include "cli/series_plan.h"
#include "cli/sheet_files.h"

namespace kerno {

// What is told, and what counts as a failure.
struct SeriesManner {
  bool strict = false, quiet = false, json = false;
};

class SeriesRun {
 public:
  // The options' outputs are read, their job is not.
  SeriesRun(const CutOptions& options, SeriesSettings settings, SeriesManner manner)
      : options_(options), settings_(std::move(settings)), manner_(manner) {}

  // Rows go on sheets, not into files of their own. The options live as long as this object.
  void PutOnSheets(SheetOptionGroup* sheets) { sheet_options_ = sheets; }

  // `text` is the template of the texts.
  ExitStatus Run(std::string_view text, Escapes escapes);

 private:
  enum class Outcome {
    kMade,
    kKept,      // files that were there stay
    kDone,      // by an earlier run
    kFailed,    // by what its messages say
    kNotTried,  // the disk was full before
  };
  // What is told of a row.
  struct Result {
    SeriesRow row;
    Outcome outcome = Outcome::kMade;
    std::vector<WrittenFile> files;  // those written
    std::vector<Message> messages;
    std::string json;      // of what was made
    std::string why;       // it failed
    bool is_open = false;  // until its sheets are written
  };
  // A row on its way.
  struct Slot : Result {
    std::vector<std::string> names;  // of its files, for each output
    std::vector<size_t> wanted;      // the outputs that are to be written
    Drawing sign;                    // for a sheet
    SheetStyle style;
  };
  // What a thread keeps from row to row.
  struct Worker {
    Worker(const CutOptions& options, const SeriesPlan& plan) : maker(options, plan) {}
    RowMaker maker;
    FolderMaker folders;
  };
  struct Counts {
    uint64_t rows = 0, given = 0, made = 0, kept = 0, done = 0, failed = 0, not_tried = 0;
    uint64_t files = 0, bytes = 0;
    std::string first_kept;  // the first file of a kept row
  };

  ExitStatus Prepare(std::string_view text, Escapes escapes);
  ExitStatus CheckOptions();
  bool SkipCountedRows();
  bool NamesAreGood();
  std::vector<std::string> NumbersUsed() const;
  bool EachRow(const std::function<bool(const SeriesRow&)>& visit);

  bool Take(Slot* slot);
  void Work(Slot* slot, Worker* worker);
  Outcome MakeRow(Slot* slot, Worker* worker);
  bool MakeDrawing(const SeriesRow& row, Worker* worker, CutDrawing* made) const;
  Outcome MakeSign(Slot* slot, Worker* worker) const;
  bool WriteFiles(const CutDrawing& made, Slot* slot, Worker* worker);
  void Give(Slot* slot);
  void PutOnSheet(Slot* slot);
  int64_t MarkOf(const SeriesRow& row) const;
  void CloseRows();
  bool FinishSheets();
  void Tell(const Result& result);
  bool ListFailed(const SeriesRow& row);
  bool FinishFailed();
  bool PrintSummary() const;

  bool IsInRange(uint64_t row) const { return row >= settings_.first && row <= settings_.last; }

  CutOptions options_;  // the job is read in Prepare, where all rows share it
  SeriesSettings settings_;
  SeriesManner manner_;
  SeriesPlan plan_;
  std::unique_ptr<RowSource> rows_;
  Status list_status_;
  std::optional<SeriesMessages> messages_;
  std::unique_ptr<FailedRows> failed_;
  SheetOptionGroup* sheet_options_ = nullptr;
  std::optional<SheetFiles> sheets_;
  std::optional<size_t> mark_column_;  // whose numbers signs bear
  std::deque<Result> open_;            // from the first row that is open
  std::atomic<bool> stops_ = false;
  bool all_printed_ = true;
  Counts counts_;
};

}  // namespace kerno
