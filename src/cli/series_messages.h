// What a series tells while it runs: of each row what is wrong with it, and on a terminal how far
// it has come.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "cli/console.h"

namespace kerno {

// Numbers of rows in short form: "2, 5-9".
class RowNumbers {
 public:
  // In rising order; one that comes again is there once.
  void Add(uint64_t row);
  bool IsEmpty() const { return ranges_.empty(); }
  std::string Text() const;

 private:
  std::vector<std::pair<uint64_t, uint64_t>> ranges_;
  uint64_t left_out_ = 0, last_left_out_ = 0;  // rows after so many ranges
};

class SeriesMessages {
 public:
  SeriesMessages(bool quiet, uint64_t rows);

  // A row's messages, after its number. A warning that another row had is not told again: its
  // rows are listed at the end.
  void Show(uint64_t row, const std::vector<Message>& messages);

  // Messages as they stand.
  void Show(const std::vector<Message>& messages);

  // Once a second, on a terminal.
  void ShowProgress(uint64_t done, uint64_t failed);

  // Ends the line of the progress and lists the rows whose warnings were not told.
  void Finish();

 private:
  void ClearLine();

  bool shows_progress_;
  uint64_t rows_;
  std::chrono::steady_clock::time_point began_, shown_;
  size_t line_length_ = 0;                            // of the progress on the screen
  std::unordered_map<std::string, RowNumbers> told_;  // warnings, and the rows that had them, too
  std::vector<const std::string*> order_;             // of those
  RowNumbers others_;                                 // with warnings that are not told
};

}  // namespace kerno
