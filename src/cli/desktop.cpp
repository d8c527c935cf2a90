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
  ShellRequest request;
  request.file = std::filesystem::is_regular_file(beside, error) ? beside : name;
  if (CurrentShell().StartProcess(request)) return kDone;
  ReportError("kerno-desktop",
              "cannot be started: it stands neither beside kerno nor on PATH; where Kerno was "
              "installed from packages, the window is in the package kerno-desktop");
  return kFailed;
}

}  // namespace kerno
