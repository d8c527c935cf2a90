// The files of sheets: rows of a series go onto sheets, and each sheet into files.
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "app/cut.h"
#include "app/reports.h"
#include "app/series_job.h"
#include "app/series_plan.h"
#include "app/sheets.h"

namespace kerno {

// How the drawings of a sheet are written.
struct SheetStyle {
  DrawingStyle style;
  double tolerance = 0;
  CurveForm curves = CurveForm::kArcs;
};

// What became of a sheet; of a row on several sheets, the last of these.
enum class SheetEnd {
  kDone,    // by an earlier run
  kMade,    // written now
  kKept,    // a file that was there stays
  kFailed,  // a file could not be written
};
struct RowEnd {
  SheetEnd end = SheetEnd::kDone;
  std::string why;  // of kFailed
};

struct SheetCounts {
  uint64_t sheets = 0, kept = 0, done = 0, failed = 0;
  uint64_t files = 0, bytes = 0, kept_files = 0;
  std::string first_kept;
};

// A sheet that is finished, and the files of it that were written now.
struct SheetResult {
  uint64_t number = 0;
  std::vector<std::string> files;
  uint64_t rows = 0;  // whose signs are all on this sheet and those before it
};

class SheetFiles {
 public:
  // The job has sheets. It and the plan live as long as this object; no sheet is written any more
  // once `stops` is true. `told` gets each sheet.
  SheetFiles(const SeriesJob& job, const SeriesPlan& plan, const std::atomic<bool>& stops,
             std::function<void(const SheetResult&)> told)
      : job_(job), plan_(plan), stops_(stops), told_(std::move(told)) {}

  // Before any row: what is wrong with options and names is reported.
  bool Check();

  // Sets a row's drawing as often as it is wanted. The first one's style is that of all sheets.
  // What is wrong with the row is reported. It bears `mark`.
  bool Add(Drawing sign, const SheetStyle& style, uint64_t row, int64_t mark);

  // Whether signs bear numbers.
  bool HasNumbers() const { return has_numbers_; }

  // Of the rows that were added, in that order: those whose sheets are all finished; taken once.
  std::vector<RowEnd> TakeEnds() { return std::exchange(ends_, {}); }
  // What there is to tell of sheets; taken once.
  std::vector<Message> TakeMessages() { return std::exchange(messages_, {}); }

  // Whether no more sheets are written. Rows that have no end yet then get none: they all fail
  // where they were to stand on one sheet and need more, and are not tried where the disk is full
  // or all was stopped.
  bool HasEnded() const { return is_overfull_ || is_full_ || stops_; }
  bool IsOverfull() const { return is_overfull_; }
  // Why such rows fail.
  static const char* OverfullReason();

  // Writes the last sheet.
  void Finish();

  // How many files of sheets are there already, where so many rows go on them; sheets are looked at
  // up to the first that has none.
  uint64_t CountStanding(uint64_t rows) const;

  const SheetCounts& counts() const { return counts_; }

 private:
  struct Row {
    uint64_t number;
    RowEnd end;
  };
  // What became of the files of a sheet.
  struct Written {
    std::vector<std::string> names;  // of those written now
    bool kept = false, failed = false;
  };
  bool ReadOptions(LengthUnit unit, SheetOptions* options);
  void Take(const Drawing& sheet, size_t number);
  void Write(const Drawing& sheet, size_t number, uint64_t signs);
  void WriteFiles(const Drawing& sheet, size_t number, Written* written);
  void WriteFile(const Drawing& sheet, const Format& format, const std::string& name,
                 Written* written);
  std::string RowsUpTo(uint64_t signs) const;
  void EndRows(uint64_t signs, const RowEnd& end);

  const SeriesJob& job_;
  const SeriesPlan& plan_;
  const std::atomic<bool>& stops_;
  std::function<void(const SheetResult&)> told_;
  int32_t copies_ = 1;
  std::optional<SheetMaker> maker_;
  SheetStyle style_;
  LengthUnit unit_ = LengthUnit::kMillimetre;
  // The first sheet waits for the second where names tell sheets apart no further.
  std::optional<Drawing> first_;
  uint64_t signs_on_first_ = 0;
  std::deque<Row> open_;     // on sheets that are not all finished
  uint64_t closed_ = 0;      // rows before them
  uint64_t signs_done_ = 0;  // on finished sheets
  std::vector<RowEnd> ends_;
  std::vector<Message> messages_;
  bool has_numbers_ = false, is_overfull_ = false, is_full_ = false;
  FolderMaker folders_;
  LeftoverRemover leftovers_;
  SheetCounts counts_;
};

}  // namespace kerno
