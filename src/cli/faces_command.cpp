#include "cli/faces_command.h"

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "app/stroke_fonts.h"
#include "base/text.h"
#include "cli/console.h"
#include "platform/font_faces.h"

namespace kerno {

void FacesCommand::AddOptions(CLI::App& app) {
  app.add_flag("--json", json_, "one JSON array of names");
  app.add_flag("--vertical", vertical_, "the \"@\" forms, for vertical writing");
  app.add_flag("--strokes", strokes_, "fonts of single lines, for kerno cut --stroke-font");
  app.add_flag("--skipped", skipped_, "warn of font files that cannot be used");
}

ExitStatus FacesCommand::ListStrokeFonts() const {
  std::string out = json_ ? "[" : "";
  bool first = true;
  for (const StrokeFontFile& font : InstalledStrokeFonts()) {
    if (json_) {
      out += first ? "\n  {\"name\": " : ",\n  {\"name\": ";
      AppendJsonString(&out, font.name);
      out += ", \"file\": ";
      AppendJsonString(&out, PathText(font.file));
      out += "}";
    } else {
      out += Utf16ToUtf8(font.name) + "\n";
    }
    first = false;
  }
  if (json_) out += first ? "]\n" : "\n]\n";
  return Print(out) && FinishPrinting() ? kDone : kFailed;
}

ExitStatus FacesCommand::Run() {
  if (strokes_) return ListStrokeFonts();
  std::vector<std::u16string> skipped;
  std::string out = json_ ? "[" : "";
  bool first = true;
  for (const InstalledFace& face : EnumerateFaces(skipped_ ? &skipped : nullptr)) {
    const bool outlines = (face.font_type & kTrueTypeFontType) != 0;
    if (!outlines || face.name.starts_with(u'@') != vertical_) continue;
    if (json_) {
      out += first ? "\n  " : ",\n  ";
      AppendJsonString(&out, face.name);
    } else {
      out += Utf16ToUtf8(face.name) + "\n";
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
