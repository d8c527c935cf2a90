// What a series tells while it runs: of each row what is wrong with it, and on a terminal how far
// it has come.
#pragma once

#include <chrono>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "cli/console.h"

namespace kerno {

class SeriesMessages {
 public:
  SeriesMessages(bool quiet, uint64_t rows);

  // A row's messages, after its number. A warning that another row had is counted alone.
  void Show(uint64_t row, const std::vector<Message>& messages);

  // Messages as they stand.
  void Show(const std::vector<Message>& messages);

  // Once a second, on a terminal.
  void ShowProgress(uint64_t done, uint64_t failed);

  // Ends the line of the progress and tells of the warnings that were counted.
  void Finish();

 private:
  void ClearLine();

  bool shows_progress_;
  uint64_t rows_;
  std::chrono::steady_clock::time_point began_, shown_;
  size_t line_length_ = 0;      // of the progress on the screen
  std::set<std::string> told_;  // warnings
  uint64_t untold_ = 0;
};

}  // namespace kerno
