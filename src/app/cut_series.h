// The series of the Cut page: a list whose rows fill the text and the fields, shown row by row and
// written as `kerno cut --data` writes it, without a toolkit.
//
// A list may be larger than memory. It is held while it is read alone, so that other programs can
// write it; a list that has changed is read again.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/cut_texts.h"
#include "app/reports.h"
#include "app/row_source.h"
#include "app/series_job.h"
#include "app/sheet_texts.h"

namespace kerno {

class SeriesList;

// What is to be written of all rows.
struct SeriesOrder {
  std::u16string text;               // with fields: {name}; lines end in U+000A
  CutTexts texts;                    // with fields, too
  std::string names;                 // of the files, with fields: "{row:03}-{name}"; without the
                                     // folder; an extension of a format is left out
  std::filesystem::path folder;      // made where it is missing
  std::vector<std::string> formats;  // by their extensions: "dxf"
  std::optional<SheetTexts> sheets;  // the rows go on sheets, of which names tell {sheet}
  std::optional<ExistingFiles> existing;  // nothing: where files are there already, they are
                                          // counted and nothing is written
};

// Something to tell of a row; 0: of none.
struct SeriesTrouble {
  uint64_t row = 0;
  Message message;
};

struct SeriesProgress {
  static constexpr size_t kMostTroubles = 20;

  bool is_running = false;
  bool writes = false;  // the names of all files are known to be good
  uint64_t rows = 0;    // that are wanted; 0 until it writes
  uint64_t done = 0;    // rows that have been told, failed ones too
  uint64_t failed = 0, files = 0;
  uint64_t kept = 0;  // rows whose files were there and stay
  bool on_sheets = false;
  uint64_t sheets = 0, rows_on_sheets = 0;  // that are written; the rows that are on them
  uint64_t standing = 0;                    // files that are there already (SeriesEnd::kFilesStand)
  std::vector<SeriesTrouble> failures;      // the first ones
  std::vector<SeriesTrouble> warnings;      // the first of each kind
  SeriesEnd end = SeriesEnd::kDone;         // once it has run
};

// What Start calls, from any thread, at most some times a second and once at the end.
using SeriesWake = std::function<void()>;

class CutSeries {
 public:
  CutSeries();
  // Ends what runs; waits for the files at hand.
  ~CutSeries();
  CutSeries(const CutSeries&) = delete;
  CutSeries& operator=(const CutSeries&) = delete;

  // Opens a list: a table by its header (comma, semicolon or tab), or the lines of a ".txt", which
  // fill {line}. UTF-8, UTF-16 by its mark, or the code page that its bytes look like. Never waits:
  // kSharingViolation where another program holds it. On failure the list before stays.
  // `wake` is called from any thread when all rows are counted.
  [[nodiscard]] Status Open(const std::filesystem::path& file, SeriesWake wake);
  void Close();

  bool is_open() const { return list_ != nullptr; }
  const std::filesystem::path& file() const;
  const std::vector<std::string>& columns() const;
  // The rows that are known so far, and whether these are all.
  uint64_t rows() const;
  bool all_counted() const;

  // The row of a number from 1 to rows(). False where it cannot be read or is none: reported. A row
  // with a fault is found.
  [[nodiscard]] bool RowAt(uint64_t number, SeriesRow* row);

  // The text and all options of a row; what is wrong with them is reported under the name of the
  // option ("text": of the text), and the outputs are then not touched.
  [[nodiscard]] bool Fill(uint64_t row, std::u16string_view text, const CutTexts& texts,
                          std::u16string* filled_text, CutTexts* filled);

  // Names for files that tell rows apart: "{row:03}-{name}"; with sheets "sheet-{sheet:02}".
  std::string ProposedNames(bool on_sheets) const;

  // Writes the files of all rows in threads of its own. What is wrong is told by progress(). False
  // while it runs already.
  bool Start(SeriesOrder order, SeriesWake wake);
  // Ends it soon: the files that are there are whole.
  void Cancel();
  SeriesProgress progress() const;

 private:
  class Run;
  std::unique_ptr<SeriesList> list_;
  std::unique_ptr<Run> run_;
};

}  // namespace kerno
