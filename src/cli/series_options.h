// The options that make a series of a command: where the rows come from, and how they are run.
#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>

#include "app/row_source.h"
#include "app/series_files.h"
#include "cli/command.h"
#include "cli/scratch_path.h"
#include "cli/text_source.h"

namespace kerno {

struct SeriesSettings {
  RowList list;
  uint64_t first = 1;  // of the rows that are made
  uint64_t last = std::numeric_limits<uint64_t>::max();
  size_t jobs = 1;
  ExistingFiles existing = ExistingFiles::kKeep;
  std::string failed = {};  // the file for rows that fail; empty: none
};

class SeriesOptions {
 public:
  void AddTo(CLI::App& app);

  // Whether there are rows at all. False, with a report, for options that need them.
  bool AreUsable() const;
  bool IsWanted() const;
  bool UsesStandardInput() const;
  // Whether they are lines of a file.
  bool HasLines() const;

  // Checks the values; without rows there is one. What is wrong is reported, and *status says how
  // the process ends. What can be read only once is kept in a file as long as this object lives.
  std::optional<SeriesSettings> Read(const TextSource& text, ExitStatus* status);

 private:
  bool ReadList(const TextSource& text, RowList* list) const;
  bool ReadRange(SeriesSettings* settings) const;
  bool ReadFailed(SeriesSettings* settings) const;
  bool KeepInput(RowList* list);

  CLI::App* app_ = nullptr;
  std::string data_, lines_, count_, separator_, rows_, jobs_, failed_;
  bool replace_ = false, resume_ = false;
  std::unique_ptr<ScratchPath> kept_;
};

}  // namespace kerno
