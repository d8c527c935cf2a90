#include "cli/sheet_options.h"

#include <CLI/CLI.hpp>

#include "app/lengths.h"
#include "app/option_values.h"
#include "cli/console.h"

namespace kerno {
namespace {

constexpr const char* kOptions[] = {"--frame",   "--corner",        "--margin", "--gap",   "--pack",
                                    "--numbers", "--number-height", "--marks",  "--copies"};

}  // namespace

void SheetOptionGroup::AddTo(CLI::App& app) {
  app_ = &app;
  app.add_option("--sheet", sheet_, "put the signs on sheets of this size, as many as are needed")
      ->type_name("WxH");
  app.add_option("--frame", frame_, "cut a frame around each sign, which stands in its middle")
      ->type_name("WxH");
  app.add_option("--corner", corner_, "radius of the frames' corners")
      ->type_name("L")
      ->capture_default_str();
  app.add_option("--margin", margin_, "kept free around a sheet")
      ->type_name("L")
      ->capture_default_str();
  app.add_option("--gap", gap_, "between signs, or their frames")
      ->type_name("L")
      ->capture_default_str();
  app.add_flag("--pack", pack_, "each sign takes its own size, not that of the largest");
  app.add_flag("--numbers", numbers_,
               "engrave the number of the row in each frame, or below each sign");
  app.add_option("--number-height", number_height_, "of these numbers")
      ->type_name("L")
      ->capture_default_str();
  app.add_option("--copies", copies_, "how often each sign stands on the sheets")
      ->type_name("N")
      ->capture_default_str();
  app.add_flag("--marks", marks_, "crosses for the camera in the corners of the margin");
}

bool SheetOptionGroup::IsGiven() const {
  return app_->count("--sheet") > 0;
}

bool SheetOptionGroup::AreUsable() const {
  if (IsGiven()) return true;
  for (const char* option : kOptions) {
    if (app_->count(option) == 0) continue;
    ReportError(option, "needs --sheet WxH");
    return false;
  }
  return true;
}

std::optional<SheetSize> SheetOptionGroup::ReadSize(const char* option,
                                                    const std::string& text) const {
  const auto pair = ReadLengthPair(option, text);
  if (!pair) return std::nullopt;
  if (pair->width == 0 || pair->height == 0) {
    ReportError(option, "\"" + text + "\" needs both sides: WxH");
    return std::nullopt;
  }
  return SheetSize{pair->width, pair->height};
}

std::optional<SheetOptions> SheetOptionGroup::Read(LengthUnit unit) {
  if (app_->count("--number-height") > 0 && !numbers_) {
    ReportError("--number-height", "needs --numbers");
    return std::nullopt;
  }
  if (pack_ && app_->count("--frame") > 0) {
    ReportError("--pack", "goes not with --frame, whose places are alike");
    return std::nullopt;
  }
  for (const char* option : {"--at", "--anchor"}) {
    if (app_->count(option) == 0) continue;
    ReportError(option, "goes not with --sheet, which places the signs");
    return std::nullopt;
  }
  const double per_unit = unit == LengthUnit::kInch ? kMillimetresPerInch : 1;
  SheetOptions options;
  const auto sheet = ReadSize("--sheet", sheet_);
  if (!sheet) return std::nullopt;
  options.sheet = {sheet->width / per_unit, sheet->height / per_unit};
  if (app_->count("--frame") > 0) {
    const auto frame = ReadSize("--frame", frame_);
    if (!frame) return std::nullopt;
    options.frame = {frame->width / per_unit, frame->height / per_unit};
  }
  const auto length = [&](const char* option, const std::string& text, double* value) {
    const auto read = ReadLength(option, text, LengthSign::kAny);
    if (!read) return false;
    if (*read < 0) {
      ReportError(option, "\"" + text + "\" is below 0");
      return false;
    }
    *value = *read / per_unit;
    return true;
  };
  if (!length("--corner", corner_, &options.corner) ||
      !length("--margin", margin_, &options.margin) || !length("--gap", gap_, &options.gap) ||
      !length("--number-height", number_height_, &options.number_height)) {
    return std::nullopt;
  }
  const auto copies = WholeNumber("--copies", copies_, 1, 1000000);
  if (!copies) return std::nullopt;
  count_ = *copies;
  if (!numbers_) options.number_height = 0;
  options.pack = pack_;
  options.marks = marks_;
  if (const Status checked = SheetMaker(options, unit, {}).Check(); !checked.ok()) {
    ReportError(checked);
    return std::nullopt;
  }
  return options;
}

}  // namespace kerno
