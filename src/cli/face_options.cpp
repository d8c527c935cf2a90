#include "cli/face_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>

#include "base/text.h"
#include "cli/arguments.h"
#include "cli/console.h"
#include "outline/shaping_font.h"
#include "platform/folder_path.h"

namespace kerno {
namespace {

constexpr const char* kFontOnly[] = {"--font-file", "--variation", "--features"};

// Reports what a reader of a list says, under the option's name.
bool IsReadable(const char* option, const Status& read) {
  if (!read.ok()) ReportError(option, Utf16ToUtf8(read.why));
  return read.ok();
}

}  // namespace

// "FILE#2" is the font 2 of FILE unless there is a file of that name.
bool ReadFontFile(const std::string& value, FaceRequest* request) {
  if (!IsFileName("--font-file", value)) return false;
  request->file = PathArgument(value);
  const size_t mark = value.rfind('#');
  if (mark == value.npos || PathExists(request->file)) return true;
  const std::string_view digits = std::string_view(value).substr(mark + 1);
  if (digits.empty() || !std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '9'; })) {
    return true;
  }
  uint32_t index = 0;
  const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), index);
  if (read.ec != std::errc()) {
    ReportError("--font-file", "\"" + std::string(digits) + "\" is too large an index");
    return false;
  }
  request->file = PathArgument(value.substr(0, mark));
  request->index = index;
  return IsFileName("--font-file", value.substr(0, mark));
}

void FaceOptions::AddTo(CLI::App& app, Source source) {
  app_ = &app;
  source_ = source;
  const bool font = source == Source::kFont;
  app.add_option("--face", face_,
                 font ? "family, or full name of a face (kerno faces lists them)"
                      : "face name (kerno faces lists them)")
      ->type_name("NAME");
  app.add_option("--style", style_,
                 font ? "a named style of the family, such as \"Bold Oblique\""
                      : "weight and slant by name, such as \"Bold Italic\"")
      ->type_name("NAME");
  app.add_option("--font-file", file_, "a font file, installed or not; #INDEX: of a collection")
      ->type_name("FILE[#INDEX]");
  app.add_option("--variation", variations_, "places on the axes of a variable font")
      ->type_name("AXIS=N,...")
      ->join(',');
  app.add_option("--features", features_, "OpenType features to turn on, or off with =0")
      ->type_name("TAG[=N],...")
      ->join(',');
  if (font) return;
  for (const char* option : kFontOnly) app.get_option(option)->group("");  // not in the help
}

void FaceOptions::ForEachText(
    const std::function<void(const char* option, std::string* value)>& visit) {
  visit("--face", &face_);
  visit("--style", &style_);
  visit("--font-file", &file_);
  visit("--variation", &variations_);
  visit("--features", &features_);
}

bool FaceOptions::IsRefused() const {
  if (source_ == Source::kFont) return false;
  for (const char* option : kFontOnly) {
    if (app_->count(option) == 0) continue;
    ReportError(option, "this command has the system draw its installed faces; use kerno cut");
    return true;
  }
  return false;
}

std::optional<FaceRequest> FaceOptions::Read() const {
  if (IsRefused()) return std::nullopt;
  FaceRequest request;
  const auto face = TextArgument("--face", face_);
  const auto style = face ? TextArgument("--style", style_) : std::nullopt;
  if (!style) return std::nullopt;
  if (app_->count("--font-file") > 0 && !ReadFontFile(file_, &request)) return std::nullopt;
  if (!IsReadable("--variation", CheckVariations(variations_)) ||
      !IsReadable("--features", CheckFeatures(features_))) {
    return std::nullopt;
  }
  request.family = *face;
  request.style = *style;
  request.variations = variations_;
  request.features = features_;
  return request;
}

}  // namespace kerno
