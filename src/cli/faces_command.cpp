#include "cli/faces_command.h"

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "base/text.h"
#include "cli/console.h"
#include "platform/font_faces.h"

namespace kerno {

void FacesCommand::AddOptions(CLI::App& app) {
  app.add_flag("--json", json_, "one JSON array of names");
  app.add_flag("--vertical", vertical_, "the \"@\" forms, for vertical writing");
  app.add_flag("--skipped", skipped_, "warn of font files that cannot be used");
}

ExitStatus FacesCommand::Run() {
  std::vector<std::u16string> skipped;
  std::string out = json_ ? "[" : "";
  bool first = true;
  for (const std::u16string& name :
       ListFamilies(vertical_ ? FamilyForm::kVertical : FamilyForm::kPlain)) {
    if (json_) {
      out += first ? "\n  " : ",\n  ";
      AppendJsonString(&out, name);
    } else {
      out += Utf16ToUtf8(name) + "\n";
    }
    first = false;
  }
  if (json_) out += first ? "]\n" : "\n]\n";
  for (const std::u16string& file : skipped) {
    ReportWarning(Utf16ToUtf8(file), "is skipped: no font that can be used");
  }
  return Print(out) && FinishPrinting() ? kDone : kFailed;
}

}  // namespace kerno
