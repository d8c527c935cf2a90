#include "cli/page_command.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <string>
#include <vector>

#include "app/option_values.h"
#include "cli/console.h"
#include "platform/folder_path.h"
#include "web/output_run.h"

namespace kerno {

void PageCommand::AddOptions(CLI::App& app) {
  app.add_option("FOLDER", folder_, "where the outputs are; each run's page is written beside them")
      ->required();
}

ExitStatus PageCommand::Run() {
  if (!IsFileName("FOLDER", folder_)) return kWrongUsage;
  std::vector<std::filesystem::path> written;
  const Status status = WriteFolderPages(PathArgument(folder_), &written);
  bool printed = true;
  for (const std::filesystem::path& page : written) {
    printed &= Print(ShownAnswer(PathBytes(page)) + "\n");
  }
  if (!status.ok()) ReportError(status);
  printed = FinishPrinting() && printed;
  if (!printed)
    ReportError("page",
                "the pages that were written are whole; only their names could not be printed");
  return printed && status.ok() ? kDone : kFailed;
}

}  // namespace kerno
