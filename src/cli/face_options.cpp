#include "cli/face_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>

#include "app/option_values.h"
#include "base/text.h"
#include "cli/console.h"
#include "outline/shaping_font.h"
#include "platform/folder_path.h"

namespace kerno {
namespace {

constexpr const char* kFontOnly[] = {"--font-file", "--variation", "--features"};

}  // namespace

void AddFaceOptions(CLI::App& app, FaceSource source, FaceTexts* texts) {
  const bool font = source == FaceSource::kFont;
  app.add_option("--face", texts->face,
                 font ? "family, or full name of a face (kerno faces lists them)"
                      : "face name (kerno faces lists them)")
      ->type_name("NAME");
  app.add_option("--style", texts->style,
                 font ? "a named style of the family, such as \"Bold Oblique\""
                      : "weight and slant by name, such as \"Bold Italic\"")
      ->type_name("NAME");
  app.add_option("--font-file", texts->file,
                 "a font file, installed or not; #INDEX: of a collection")
      ->type_name("FILE[#INDEX]");
  app.add_option("--variation", texts->variations, "places on the axes of a variable font")
      ->type_name("AXIS=N,...")
      ->join(',');
  app.add_option("--features", texts->features, "OpenType features to turn on, or off with =0")
      ->type_name("TAG[=N],...")
      ->join(',');
  if (font) return;
  for (const char* option : kFontOnly) app.get_option(option)->group("");  // not in the help
}

void FaceOptions::AddTo(CLI::App& app) {
  app_ = &app;
  AddFaceOptions(app, FaceSource::kSystem, &texts_);
}

bool FaceOptions::IsRefused() const {
  for (const char* option : kFontOnly) {
    if (app_->count(option) == 0) continue;
    ReportError(option, "this command has the system draw its installed faces; use kerno cut");
    return true;
  }
  return false;
}

std::optional<FaceRequest> FaceOptions::Read() const {
  if (IsRefused()) return std::nullopt;
  return ReadFace(texts_, {});
}

}  // namespace kerno
