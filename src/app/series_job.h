// What a series makes: a drawing for each row of a list, where it goes, and how that is told.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include "app/cut_texts.h"
#include "app/output_list.h"
#include "app/row_source.h"
#include "app/row_template.h"
#include "app/series_files.h"
#include "app/sheet_texts.h"

namespace kerno {

struct SeriesJob {
  RowList list;
  uint64_t first = 1;  // of the rows that are made
  uint64_t last = std::numeric_limits<uint64_t>::max();
  size_t jobs = 1;  // rows at work at a time
  ExistingFiles existing = ExistingFiles::kKeep;
  bool asks_first =
      false;  // where files are there already, they are counted and nothing is written
  std::string failed = {};  // the file for rows that fail; empty: none
  bool strict = false;      // a row fails for what is told of others as a warning

  std::string text;  // the template of the texts
  Escapes escapes = Escapes::kNone;
  CutTexts texts;                         // with fields
  OutputList outputs;                     // whose names have fields
  std::optional<SheetTexts> sheets = {};  // rows go on sheets, not into files of their own
};

// How a series ends.
enum class SeriesEnd {
  kDone,         // everything is as it was wanted
  kFailed,       // something could not be read, made or written
  kWrongUsage,   // texts that cannot be: nothing was written
  kFaceTrouble,  // the face is not there: nothing was written
  kFilesStand,   // files are there already: nothing was written
  kStopped,      // by SeriesRun::Stop
};

}  // namespace kerno
