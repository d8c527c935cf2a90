// The files of sheets: rows of a series go onto sheets, and each sheet into files.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "app/series_files.h"
#include "app/sheets.h"
#include "cli/console.h"
#include "cli/cut_options.h"
#include "cli/series_plan.h"
#include "cli/sheet_options.h"

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

class SheetFiles {
 public:
  struct Counts {
    uint64_t sheets = 0, kept = 0, done = 0, failed = 0;
    uint64_t files = 0, bytes = 0, kept_files = 0;
    std::string first_kept;
  };

  // All three live as long as this object.
  SheetFiles(SheetOptionGroup& sheets, const OutputFiles& outputs, const SeriesPlan& plan,
             ExistingFiles existing)
      : group_(sheets), outputs_(outputs), plan_(plan), existing_(existing) {}

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
  // where they were to stand on one sheet and need more, and are not tried where the disk is full.
  bool HasEnded() const { return is_overfull_ || is_full_; }
  bool IsOverfull() const { return is_overfull_; }
  // Why such rows fail.
  static const char* OverfullReason();

  // Writes the last sheet.
  void Finish();

  const Counts& counts() const { return counts_; }

  // A line of JSON for each sheet that is finished; taken once.
  std::string TakeJson() { return std::exchange(json_, {}); }

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
  void Take(const Drawing& sheet, size_t number);
  void Write(const Drawing& sheet, size_t number, uint64_t signs);
  void WriteFiles(const Drawing& sheet, size_t number, Written* written);
  void WriteFile(const Drawing& sheet, const Format& format, const std::string& name,
                 Written* written);
  std::string RowsUpTo(uint64_t signs) const;
  void EndRows(uint64_t signs, const RowEnd& end);

  SheetOptionGroup& group_;
  const OutputFiles& outputs_;
  const SeriesPlan& plan_;
  ExistingFiles existing_;
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
  Counts counts_;
  std::string json_;
};

}  // namespace kerno
