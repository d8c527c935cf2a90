#include "cli/convert_command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <utility>

#include "app/option_values.h"
#include "base/text.h"
#include "cli/choices.h"
#include "cli/console.h"
#include "parts/ipx.h"
#include "parts/shapes.h"

namespace kerno {
namespace {

size_t EntityCount(const PartsA& model) {
  size_t count = 0;
  for (const PartsElement& part : PartsView(model)) {
    const ElementCounts counts = CountElements(part);
    count += counts.outlines + counts.faces + counts.texts;
  }
  return count;
}

bool HasPointSets(const PartsA& model) {
  return std::ranges::any_of(PartsView(model), [](const PartsElement& part) {
    return CountElements(part).point_sets > 0;
  });
}

std::string Counted(size_t count, const char* what) {
  return std::to_string(count) + " " + what;
}

}  // namespace

void ConvertCommand::AddOptions(CLI::App& app) {
  app_ = &app;
  text_.AddTo(app);
  app.add_option("--elements", elements_, "what a contour becomes")
      ->type_name(ChoiceText(kElementChoices))
      ->capture_default_str();
  app.add_option("--layer", layer_, "name of the layer")->type_name("NAME")->capture_default_str();
  app.add_option("--ipx", ipx_, "read the drawing from a parts file instead of setting text")
      ->type_name("FILE");
  outputs_.AddTo(app);
  writers_.AddTo(app);
}

bool ConvertCommand::ReadChoices() {
  const auto layer = TextArgument("--layer", layer_);
  if (!layer) return false;
  parts_.layer = *layer;
  return Choose(kElementChoices, elements_, &parts_.elements);
}

ExitStatus ConvertCommand::BuildFromText(PartsA* model, std::string* summary) {
  ExitStatus status = kDone;
  const auto job = text_.Resolve(&status);
  if (!job) return status;
  auto set = text_.MakeAndReport(*job, TextOptions::Placing::kPlaced, &status);
  if (!set) return status;
  TextOptions::ReportLicence(*job, *set);
  if (!TextOptions::CheckRange(set->contours)) return kWrongUsage;
  const auto contours = std::make_shared<const TextContours>(std::move(set->contours));
  *model = DrawingOf(contours, parts_);
  *summary = (text_.FaceIsOpen() ? Utf16ToUtf8(set->face) + ", " : "") +
             Counted(set->characters, "characters, ") + Counted(contours->size(), "contours, ") +
             Counted(EntityCount(*model), "entities");
  return kDone;
}

ExitStatus ConvertCommand::ReadParts(PartsA* model, std::string* summary) const {
  if (!IsFileName("--ipx", ipx_)) return kWrongUsage;
  for (const CLI::Option* option : app_->get_options()) {
    const std::string name = option->get_name();
    const bool goes_with_ipx =
        name == "--ipx" || name == "--quiet" || outputs_.Owns(name) || writers_.Owns(name);
    if (option->count() > 0 && !goes_with_ipx) {
      ReportError(name, "does not go with --ipx: the parts file is written as it is");
      return kWrongUsage;
    }
  }
  if (text_.quiet()) SilenceWarnings();
  const Status read = ReadIpxFile(PathArgument(ipx_), model);
  if (!read.ok()) {
    ReportError(read);
    return kFailed;
  }
  if (EntityCount(*model) == 0 && !HasPointSets(*model)) ReportWarning(ipx_, "holds no elements");
  *summary = Counted(model->parts.size(), "parts, ") + Counted(EntityCount(*model), "entities");
  return kDone;
}

ExitStatus ConvertCommand::Run() {
  if (!outputs_.Read() || !writers_.Read() || !ReadChoices()) return kWrongUsage;
  PartsA model;
  std::string summary;
  const ExitStatus status =
      app_->count("--ipx") == 0 ? BuildFromText(&model, &summary) : ReadParts(&model, &summary);
  if (status != kDone) return status;
  const auto write = [&](const Format& format, const std::filesystem::path& file) {
    return format.write(model, file, writers_.options());
  };
  return outputs_.WriteAll(write, {summary, text_.quiet()}) ? kDone : kFailed;
}

}  // namespace kerno
