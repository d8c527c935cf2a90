// What a series tells on the command line: messages as it goes, and a summary or a line of JSON for
// each row.
#pragma once

#include <optional>
#include <string>

#include "app/series_run.h"
#include "cli/series_messages.h"

namespace kerno {

class SeriesPrinter final : public SeriesObserver {
 public:
  SeriesPrinter(bool quiet, bool json) : quiet_(quiet), json_(json) {}

  std::string Describe(const CutDrawing& made, const std::vector<WrittenFile>& files) override;
  void Begin(uint64_t rows) override;
  void RowSays(uint64_t row, const std::vector<Message>& messages) override;
  void SheetsSay(const std::vector<Message>& messages) override;
  void RowEnds(const RowResult& result) override;
  void SheetEnds(const SheetResult& sheet) override;
  void Came(const SeriesCounts& counts) override;
  void End(const SeriesCounts& counts, const Status& list) override;

  // After the run; nothing where no row was to be made. False when anything could not be printed.
  [[nodiscard]] bool PrintSummary(const SeriesCounts& counts);

 private:
  bool quiet_, json_;
  std::optional<SeriesMessages> messages_;
  std::string sheet_lines_;  // come after those of all rows
  bool all_printed_ = true;
};

}  // namespace kerno
