// The options that make a series of a command: where the rows come from, and how they are run.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "app/series_job.h"
#include "cli/command.h"
#include "cli/scratch_path.h"
#include "cli/text_source.h"

namespace kerno {

class SeriesOptions {
 public:
  void AddTo(CLI::App& app);

  // Whether there are rows at all. False, with a report, for options that need them.
  bool AreUsable() const;
  bool IsWanted() const;
  bool UsesStandardInput() const;
  // Whether they are lines of a file.
  bool HasLines() const;

  // The rows of a job, and how they are run; without rows there is one. What is wrong is reported,
  // and *status says how the process ends. What can be read only once is kept in a file as long as
  // this object lives.
  std::optional<SeriesJob> Read(const TextSource& text, ExitStatus* status);

 private:
  bool ReadList(const TextSource& text, RowList* list) const;
  bool ReadRange(SeriesJob* job) const;
  bool ReadFailed(SeriesJob* job) const;
  bool KeepInput(RowList* list);

  CLI::App* app_ = nullptr;
  std::string data_, lines_, count_, separator_, rows_, jobs_, failed_;
  bool replace_ = false, resume_ = false;
  std::unique_ptr<ScratchPath> kept_;
};

}  // namespace kerno
