#include "cli/desktop.h"

#include <system_error>

#include "base/folders.h"
#include "cli/console.h"
#include "platform/shell.h"

namespace kerno {

ExitStatus StartDesktop() {
  if (!HasDisplay()) {
    ReportError("usage",
                "no command given, and there is no display for the window; kerno help lists the "
                "commands");
    return kWrongUsage;
  }
  const std::filesystem::path name = "kerno-desktop";
  std::error_code error;
  const std::filesystem::path beside = ProgramFolder() / name;
  const bool stands_beside = std::filesystem::is_regular_file(beside, error);
  if (CurrentShell().StartProcess(stands_beside ? beside : name, {}, {})) return kDone;
  ReportError("kerno-desktop", "cannot be started: it stands neither beside kerno nor on PATH");
  return kFailed;
}

}  // namespace kerno
