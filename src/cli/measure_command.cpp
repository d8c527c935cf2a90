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
  const auto request = text_.Resolve(&status);
  if (!request) return status;
  const auto context = CreateMeasuringContext();
  const StringExtent extent =
      MeasureString(context.get(), request->text, request->face.starts_with(u'@'), request->height,
                    request->width, request->placement.slant, request->placement.angle,
                    request->face, request->weight);
  const P2 size = {extent.length * text_.scale(), extent.height * text_.scale()};
  if (!TextOptions::CheckRange({&size, 1})) return kWrongUsage;
  std::string length, height;
  AppendShortest(&length, size.x);
  AppendShortest(&height, size.y);
  const std::string out = json_ ? "{\"length\": " + length + ", \"height\": " + height + "}\n"
                                : "length " + length + "\nheight " + height + "\n";
  return Print(out) && FinishPrinting() ? kDone : kFailed;
}

}  // namespace kerno
