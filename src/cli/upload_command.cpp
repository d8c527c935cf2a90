#include "cli/upload_command.h"

#include <CLI/CLI.hpp>

#include "app/option_values.h"
#include "base/notices.h"
#include "base/text.h"
#include "cli/console.h"
#include "web/upload_profile.h"

namespace kerno {

void UploadCommand::AddOptions(CLI::App& app) {
  app.add_option("FILE", files_, "files to send, one request each")->required();
  app.footer(ServerNote(Utf16ToUtf8(PathText(UploadSettingsFile()))));
}

std::string UploadCommand::ServerNote(const std::string& file) {
  return "The server is set in " + file + ", section [UpFile], key \"server\".";
}

ExitStatus UploadCommand::Run() {
  for (const std::string& file : files_) {
    if (!IsFileName("FILE", file)) return kWrongUsage;
  }
  ExitStatus status = kDone;
  for (const std::string& file : files_) {
    const UploadResult result = UploadFile(PathArgument(file));
    if (result.ok()) {
      if (!Print(ShownAnswer(Utf16ToUtf8(result.message)) + "\n")) status = kFailed;
      continue;
    }
    status = kFailed;
    CurrentNotices().Message(result.message);  // below a bar of progress that has not ended
    // What is wrong with the settings is wrong for every file.
    if (result.end == UploadEnd::kNotConfigured || result.end == UploadEnd::kBadSettings) break;
  }
  return FinishPrinting() ? status : kFailed;
}

}  // namespace kerno
