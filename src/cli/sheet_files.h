// The files of sheets: rows of a series go onto sheets, and each sheet into files.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "app/series_files.h"
#include "app/sheets.h"
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

class SheetFiles {
 public:
  struct Counts {
    uint64_t sheets = 0, kept = 0, done = 0, files = 0, bytes = 0;
    bool failed = false;  // a file could not be written
    std::string first_kept;
  };

  // All three live as long as this object.
  SheetFiles(SheetOptionGroup& sheets, const OutputFiles& outputs, const SeriesPlan& plan,
             ExistingFiles existing)
      : group_(sheets), outputs_(outputs), plan_(plan), existing_(existing) {}

  // Before any row: what is wrong with options and names is reported.
  bool Check();

  // Sets a row's drawing as often as it is wanted. The first one's style is that of all sheets.
  // What is wrong with the row is reported.
  bool Add(Drawing sign, const SheetStyle& style, uint64_t row);

  // Writes the last sheet.
  void Finish();

  const Counts& counts() const { return counts_; }

  // A line of JSON for each sheet that is finished; taken once.
  std::string TakeJson() { return std::exchange(json_, {}); }

 private:
  void Take(const Drawing& sheet, size_t number);
  void Write(const Drawing& sheet, size_t number);
  bool WriteFile(const Drawing& sheet, const Format& format, const std::string& name);

  SheetOptionGroup& group_;
  const OutputFiles& outputs_;
  const SeriesPlan& plan_;
  ExistingFiles existing_;
  std::optional<SheetMaker> maker_;
  SheetStyle style_;
  LengthUnit unit_ = LengthUnit::kMillimetre;
  // The first sheet waits for the second where names tell sheets apart no further.
  std::optional<Drawing> first_;
  FolderMaker folders_;
  Counts counts_;
  std::string json_;
};

}  // namespace kerno
