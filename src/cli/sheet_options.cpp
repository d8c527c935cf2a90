#include "cli/sheet_options.h"

#include <CLI/CLI.hpp>

#include "cli/console.h"

namespace kerno {
namespace {

constexpr const char* kOptions[] = {"--frame",   "--corner",        "--margin", "--gap",   "--pack",
                                    "--numbers", "--number-height", "--marks",  "--copies"};

}  // namespace

void SheetOptionGroup::AddTo(CLI::App& app) {
  app_ = &app;
  app.add_option("--sheet", texts_.sheet,
                 "put the signs on sheets of this size, as many as are needed")
      ->type_name("WxH");
  app.add_option("--frame", texts_.frame,
                 "cut a frame around each sign, which stands in its middle")
      ->type_name("WxH");
  app.add_option("--corner", texts_.corner, "radius of the frames' corners")
      ->type_name("L")
      ->capture_default_str();
  app.add_option("--margin", texts_.margin, "kept free around a sheet")
      ->type_name("L")
      ->capture_default_str();
  app.add_option("--gap", texts_.gap, "between signs, or their frames")
      ->type_name("L")
      ->capture_default_str();
  app.add_flag("--pack", texts_.pack, "each sign takes its own size, not that of the largest");
  app.add_flag("--numbers", texts_.numbers,
               "engrave the number of the row in each frame, or below each sign");
  app.add_option("--number-height", texts_.number_height, "of these numbers")
      ->type_name("L")
      ->capture_default_str();
  app.add_option("--copies", texts_.copies, "how often each sign stands on the sheets")
      ->type_name("N")
      ->capture_default_str();
  app.add_flag("--marks", texts_.marks, "crosses for the camera in the corners of the margin");
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

SheetTexts SheetOptionGroup::Texts() const {
  SheetTexts texts = texts_;
  for (const char* option : kOptions) {
    if (app_->count(option) > 0) texts.given.emplace(option);
  }
  return texts;
}

}  // namespace kerno
