#include "cli/measure_command.h"

#include <CLI/CLI.hpp>

#include "base/number_text.h"
#include "cli/console.h"

namespace kerno {

void MeasureCommand::AddOptions(CLI::App& app) {
  text_.AddTo(app);
  app.add_flag("--json", json_, "one JSON object");
}

ExitStatus MeasureCommand::Run() {
  ExitStatus status = kDone;
  const auto job = text_.Resolve(&status);
  if (!job) return status;
  const auto context = CreateMeasuringContext();
  const TextRequest& text = job->text;
  const StringExtent extent = MeasureString(
      context.get(), text.text, text.face.vertical, text.height, text.width, text.placement.slant,
      text.placement.angle, SystemFaceName(text.face), text.weight);
  const P2 size = {extent.length * job->scale, extent.height * job->scale};
  if (!TextOptions::CheckRange({&size, 1})) return kWrongUsage;
  std::string length, height;
  AppendShortest(&length, size.x);
  AppendShortest(&height, size.y);
  const std::string out = json_ ? "{\"length\": " + length + ", \"height\": " + height + "}\n"
                                : "length " + length + "\nheight " + height + "\n";
  return Print(out) && FinishPrinting() ? kDone : kFailed;
}

}  // namespace kerno
